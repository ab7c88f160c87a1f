#include "config/platform/platform.h"

#include <gtest/gtest.h>
#include <string>

#include "base/system_owners.h"
#include "config/platform/message_box.h"
#include "resources/string_ids.h"
#include "support/built_file.h"
#include "support/import_patch.h"
#include "support/late_functions.h"
#include "support/watch.h"

namespace quillo {
namespace {

using test::LateFunctions;

TEST(PlatformKindOf, HighBitAndMajorVersion) {
  EXPECT_EQ(PlatformKindOf(0x7FFFFF04), PlatformKind::kNt);
  EXPECT_EQ(PlatformKindOf(0x80000004), PlatformKind::k9x);
  EXPECT_EQ(PlatformKindOf(0x80000A03), PlatformKind::kOther);
}

TEST(IsNt6OrLater, ExtendedThenPlainStructure) {
  EXPECT_TRUE(IsNt6OrLater());
  DWORD nt_version = 0;  // of a system that knows the plain structure only; 0 = not even that
  const WATCH(GetVersionExW) get([&nt_version](OSVERSIONINFOW* version) {
    version->dwPlatformId = VER_PLATFORM_WIN32_NT;
    version->dwMajorVersion = nt_version;
    return version->dwOSVersionInfoSize == 276 && nt_version != 0;
  });
  for (const auto& [version, expected] : {std::pair{0u, false}, {5u, false}, {6u, true}}) {
    nt_version = version;
    EXPECT_EQ(IsNt6OrLater(), expected) << version;
  }
}

HANDLE deny_only_token;

BOOL WINAPI OpenDenyOnlyToken(HANDLE, DWORD access, HANDLE* token) {
  return DuplicateHandle(GetCurrentProcess(), deny_only_token, GetCurrentProcess(), token, access,
                         FALSE, 0);
}

BOOL WINAPI OneOtherGroup(HANDLE, TOKEN_INFORMATION_CLASS, void* out, DWORD size, DWORD* needed) {
  static SID everyone = {SID_REVISION, 1, SECURITY_WORLD_SID_AUTHORITY, {SECURITY_WORLD_RID}};
  *needed = sizeof(TOKEN_GROUPS);
  if (size < *needed) return FALSE;
  *static_cast<TOKEN_GROUPS*>(out) = {1, {{&everyone, SE_GROUP_ENABLED}}};
  return TRUE;
}

TEST(IsAdministrator, GroupEnabledDenyOnlyOrAbsent) {
  EXPECT_TRUE(IsAdministrator());  // Wine's user has the group enabled

  KernelHandle own, token;
  ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, own.Receive()));
  BYTE sid[SECURITY_MAX_SID_SIZE];
  DWORD size = sizeof(sid);
  ASSERT_TRUE(CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, sid, &size));
  SID_AND_ATTRIBUTES denied = {sid, 0};
  ASSERT_TRUE(
      CreateRestrictedToken(own.Get(), 0, 1, &denied, 0, nullptr, 0, nullptr, token.Receive()));
  deny_only_token = token.Get();
  LateFunctions functions;
  functions.Replace("OpenProcessToken", OpenDenyOnlyToken);
  EXPECT_TRUE(IsAdministrator());

  // No token without the group can be made from one that has it, so its group list stands in.
  functions.Replace("GetTokenInformation", OneOtherGroup);
  EXPECT_FALSE(IsAdministrator());
  functions.Replace(
      "GetTokenInformation",
      +[](HANDLE, TOKEN_INFORMATION_CLASS, void*, DWORD, DWORD* needed) WINAPI {
        *needed = sizeof(TOKEN_GROUPS);
        return FALSE;
      });
  EXPECT_FALSE(IsAdministrator());
}

TEST(IsAdministrator, FunctionsMissing_OnlyThe9xFamilyIs) {
  LateFunctions functions;
  for (const char* name : {"OpenProcessToken", "GetTokenInformation", "AllocateAndInitializeSid",
                           "EqualSid", "FreeSid"}) {
    functions.Restore();
    functions.Miss(name);
    EXPECT_FALSE(IsAdministrator()) << name;
  }
  const WATCH(GetVersion) version(DWORD{0xC0000A04});
  EXPECT_TRUE(IsAdministrator());
}

TEST(Wow64, FunctionsMissing_NothingIsSwitched) {
  LateFunctions functions;
  functions.Replace(
      "IsWow64Process", +[](HANDLE, BOOL* wow64) WINAPI { return *wow64 = TRUE; });
  {
    WATCH(LoadLibraryExW)
    loads([&loads](LPCWSTR name, HANDLE file, DWORD flags) {
      EXPECT_EQ(flags, static_cast<DWORD>(LOAD_LIBRARY_SEARCH_SYSTEM32));
      return loads.CallOriginal(name, file, flags);
    });
    EXPECT_TRUE(IsWow64());
    EXPECT_EQ(loads.calls.size(), 1u);
  }
  static int redirections_off;
  functions.Replace(
      "Wow64DisableWow64FsRedirection", +[](void** state) WINAPI -> BOOL {
        *state = &redirections_off;
        return ++redirections_off;
      });
  functions.Replace(
      "Wow64RevertWow64FsRedirection",
      +[](void* state) WINAPI -> BOOL { return --*static_cast<int*>(state); });
  {
    const FsRedirectionOff off;
    EXPECT_EQ(redirections_off, 1);
  }
  EXPECT_EQ(redirections_off, 0);
  functions.Miss("IsWow64Process");
  functions.Miss("Wow64DisableWow64FsRedirection");
  functions.Miss("Wow64RevertWow64FsRedirection");
  void* state = nullptr;
  EXPECT_FALSE(IsWow64());
  EXPECT_FALSE(DisableFsRedirection(&state));
  EXPECT_FALSE(RevertFsRedirection(state));
}

TEST(MessageBox, TextsOfResourcesAndOfTheSystem) {
  std::wstring shown;  // "caption: text, style"
  const WATCH(MessageBoxW)
      show([&shown](HWND, const wchar_t* text, const wchar_t* caption, UINT style) {
        shown = std::wstring(caption) + L": " + (text != nullptr ? text : L"");
        shown += L", " + std::to_wstring(style);
        return IDRETRY;
      });
  const Library resources(LoadLibraryW(test::BuiltFile(L"QXRES06X.dll").c_str()));
  ASSERT_TRUE(resources);
  EXPECT_EQ(ShowResourceMessage(resources.Get(), IDS_NO_MORE_CUSTOM_PAPERS, IDS_ERROR, 5), IDRETRY);
  EXPECT_EQ(shown, L"Error: Can not add another custom paper!, 5");

  SetLastError(ERROR_FILE_NOT_FOUND);
  ShowLastError();
  const LocalBlock text = SystemMessage(ERROR_FILE_NOT_FOUND);
  ASSERT_TRUE(text);
  EXPECT_EQ(shown, L"Error: " + std::wstring(static_cast<wchar_t*>(text.Get())) + L", 64");
  SetLastError(0xDEADBEEF);
  ShowLastError();
  EXPECT_EQ(shown, L"Error: , 64");

  // Where nobody can answer, nothing is shown.
  for (const bool of_a_service : {false, true}) {
    const WATCH(GetUserObjectInformationW) station([&](HANDLE, int, void* out, auto, auto) -> BOOL {
      static_cast<USEROBJECTFLAGS*>(out)->dwFlags = of_a_service ? WSF_VISIBLE : 0;
      return TRUE;
    });
    const WATCH(ProcessIdToSessionId) session([&](DWORD, DWORD* out) -> BOOL {
      *out = of_a_service ? 0 : 1;
      return TRUE;
    });
    static std::wstring debugged;
    const test::ImportPatch debug(
        "OutputDebugStringW", +[](const wchar_t* part) WINAPI { debugged += part; });
    debugged.clear();
    EXPECT_EQ(ShowMessageBox(L"text", L"caption", MB_OK), 0);
    EXPECT_EQ(debugged, L"caption: text\n");
  }

  const wchar_t* first = ResourceString(resources.Get(), IDS_ERROR);
  EXPECT_STREQ(first, L"Error");
  EXPECT_EQ(ResourceString(resources.Get(), IDS_NO_MORE_CUSTOM_PAPERS), first);
  EXPECT_STREQ(first, L"Can not add another custom paper!");
  EXPECT_STREQ(ResourceString(resources.Get(), 999), L"");
}

}  // namespace
}  // namespace quillo
