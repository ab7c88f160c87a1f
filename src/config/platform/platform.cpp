#include "config/platform/platform.h"

#include "config/platform/late_library.h"

namespace quillo {

namespace {

/// Whether `administrators` is among the groups of a token.
///
/// Compatibility: attributes are ignored, so a deny-only group counts. Kept for the settings that
/// such users have stored for the machine.
bool HasGroup(const TOKEN_GROUPS& groups, PSID administrators, decltype(EqualSid)& equal) {
  for (DWORD i = 0; i < groups.GroupCount; ++i) {
    if (equal(groups.Groups[i].Sid, administrators)) return true;
  }
  return false;
}

bool IsInAdministratorsGroup() {
  const LateLibrary security(L"Advapi32.dll");
  auto* open = security.Find<decltype(OpenProcessToken)>("OpenProcessToken");
  auto* query = security.Find<decltype(GetTokenInformation)>("GetTokenInformation");
  auto* allocate = security.Find<decltype(AllocateAndInitializeSid)>("AllocateAndInitializeSid");
  auto* equal = security.Find<decltype(EqualSid)>("EqualSid");
  auto* free = security.Find<decltype(FreeSid)>("FreeSid");
  if (!open || !query || !allocate || !equal || !free) return false;

  KernelHandle token;
  if (!open(GetCurrentProcess(), TOKEN_QUERY, token.Receive())) return false;
  DWORD size = 0;
  query(token.Get(), TokenGroups, nullptr, 0, &size);
  if (size == 0) return false;
  const HeapBlock groups(size);
  if (!groups || !query(token.Get(), TokenGroups, groups.Get(), size, &size)) return false;

  SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
  PSID administrators = nullptr;
  if (!allocate(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0,
                0, &administrators)) {
    return false;
  }
  const bool found = HasGroup(*groups.As<TOKEN_GROUPS>(), administrators, *equal);
  free(administrators);
  return found;
}

}  // namespace

PlatformKind PlatformKindOf(DWORD version) {
  if ((version & 0x80000000u) == 0) return PlatformKind::kNt;
  return LOBYTE(LOWORD(version)) >= 4 ? PlatformKind::k9x : PlatformKind::kOther;
}

PlatformKind Platform() { return PlatformKindOf(GetVersion()); }

bool IsNt6OrLater() {
  OSVERSIONINFOEXW version = {};
  auto* plain = reinterpret_cast<OSVERSIONINFOW*>(&version);
  static_assert(sizeof(OSVERSIONINFOEXW) == 284 && sizeof(OSVERSIONINFOW) == 276);
  version.dwOSVersionInfoSize = sizeof(OSVERSIONINFOEXW);
  if (!GetVersionExW(plain)) {
    version.dwOSVersionInfoSize = sizeof(OSVERSIONINFOW);
    if (!GetVersionExW(plain)) return false;
  }
  return version.dwPlatformId == VER_PLATFORM_WIN32_NT && version.dwMajorVersion >= 6;
}

bool IsAdministrator() { return Platform() == PlatformKind::k9x || IsInAdministratorsGroup(); }

bool IsWow64() {
  const LateLibrary kernel(L"kernel32");
  auto* query = kernel.Find<decltype(IsWow64Process)>("IsWow64Process");
  BOOL wow64 = FALSE;
  return query != nullptr && query(GetCurrentProcess(), &wow64) && wow64;
}

bool DisableFsRedirection(void** saved_state) {
  const LateLibrary kernel(L"Kernel32.dll");
  auto* disable =
      kernel.Find<decltype(Wow64DisableWow64FsRedirection)>("Wow64DisableWow64FsRedirection");
  return disable != nullptr && disable(saved_state);
}

bool RevertFsRedirection(void* saved_state) {
  const LateLibrary kernel(L"Kernel32.dll");
  auto* revert =
      kernel.Find<decltype(Wow64RevertWow64FsRedirection)>("Wow64RevertWow64FsRedirection");
  return revert != nullptr && revert(saved_state);
}

}  // namespace quillo
