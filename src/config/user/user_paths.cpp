#include "config/user/user_paths.h"

#include <userenv.h>
#include <wtsapi32.h>

#include "config/platform/late_library.h"

namespace quillo {

namespace {

constexpr wchar_t kSecurityLibrary[] = L"Advapi32.dll";
static_assert(TOKEN_ALL_ACCESS == 0xF01FF);
constexpr DWORD kTempFolderCharacters = MAX_PATH;
// Compatibility: MAX_PATH bytes, not characters; longer values are ignored. Kept for the settings
// of users whose files go elsewhere because of it.
constexpr DWORD kTempFolderValueBytes = MAX_PATH;

/// The token of the thread, or of the process when the thread impersonates nobody.
KernelHandle OpenCallersToken(DWORD access, BOOL open_as_self) {
  const LateLibrary security(kSecurityLibrary);
  KernelHandle token;
  if (auto* open = security.Find<decltype(OpenThreadToken)>("OpenThreadToken")) {
    if (open(GetCurrentThread(), access, open_as_self, token.Receive())) return token;
    if (GetLastError() != ERROR_NO_TOKEN) return KernelHandle();
  }
  auto* open = security.Find<decltype(OpenProcessToken)>("OpenProcessToken");
  if (open != nullptr && open(GetCurrentProcess(), access, token.Receive())) return token;
  return KernelHandle();
}

/// The token of the user logged on to the current session, or the caller's.
KernelHandle OpenToken(DWORD access, BOOL open_as_self) {
  const LateLibrary sessions(L"WTSAPI32.DLL");
  auto* query = sessions.Find<decltype(WTSQueryUserToken)>("WTSQueryUserToken");
  KernelHandle token;
  if (query != nullptr && query(WTS_CURRENT_SESSION, token.Receive())) return token;
  return OpenCallersToken(access, open_as_self);
}

/// Reads a text value of the user's environment; false when it is missing, too long, empty or not a
/// text.
bool ReadFolder(HKEY environment, const wchar_t* name, wchar_t (&folder)[kTempFolderCharacters]) {
  DWORD type = REG_NONE;
  DWORD bytes = kTempFolderValueBytes;
  if (RegQueryValueExW(environment, name, nullptr, &type, reinterpret_cast<BYTE*>(folder),
                       &bytes) != ERROR_SUCCESS) {
    return false;
  }
  if ((type != REG_SZ && type != REG_EXPAND_SZ) || bytes > kTempFolderValueBytes) return false;
  folder[bytes / sizeof(wchar_t)] = L'\0';
  return folder[0] != L'\0';
}

}  // namespace

KernelHandle UserToken() {
  const KernelHandle token = OpenToken(TOKEN_DUPLICATE | TOKEN_IMPERSONATE, TRUE);
  const LateLibrary security(kSecurityLibrary);
  auto* duplicate = security.Find<decltype(DuplicateTokenEx)>("DuplicateTokenEx");
  if (!token || duplicate == nullptr) return KernelHandle();
  KernelHandle primary;
  if (!duplicate(token.Get(), TOKEN_ALL_ACCESS, nullptr, SecurityImpersonation, TokenPrimary,
                 primary.Receive())) {
    return KernelHandle();
  }
  return primary;
}

DWORD UserTempFolder(wchar_t* buffer, DWORD size) {
  if (buffer == nullptr || size == 0) return 0;
  buffer[0] = L'\0';

  const KernelHandle token = UserToken();
  RegistryKey environment;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, L"Environment", 0, KEY_QUERY_VALUE, environment.Receive()) !=
      ERROR_SUCCESS) {
    return 0;
  }

  wchar_t folder[kTempFolderCharacters];
  DWORD fallback_length = 0;
  if (!ReadFolder(environment.Get(), L"TMP", folder) &&
      !ReadFolder(environment.Get(), L"TEMP", folder)) {
    fallback_length = GetTempPathW(kTempFolderCharacters, folder);
    if (fallback_length == 0 || fallback_length >= kTempFolderCharacters) return 0;
  }

  const LateLibrary profiles(L"Userenv.dll");
  auto* expand =
      profiles.Find<decltype(ExpandEnvironmentStringsForUserW)>("ExpandEnvironmentStringsForUserW");
  if (expand == nullptr) {
    const DWORD length = GetTempPathW(size, buffer);
    return length < size ? length : 0;
  }
  if (expand(token.Get(), folder, buffer, size)) return size;
  buffer[0] = L'\0';
  return fallback_length;
}

bool PrintingUserSession(DWORD& session) {
  const KernelHandle token = OpenCallersToken(TOKEN_QUERY, TRUE);
  const LateLibrary security(kSecurityLibrary);
  auto* query = security.Find<decltype(GetTokenInformation)>("GetTokenInformation");
  DWORD size = 0;
  return token && query != nullptr &&
         query(token.Get(), TokenSessionId, &session, sizeof(session), &size);
}

}  // namespace quillo
