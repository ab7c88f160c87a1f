#include "config/platform.h"

#include <gtest/gtest.h>
#include <vector>

#include "base/kernel_owners.h"
#include "support/import_patch.h"
#include "support/late_functions.h"

namespace quillo {
namespace {

using test::ImportPatch;
using test::LateFunctions;

TEST(PlatformKindOf, HighBitAndMajorVersion) {
  EXPECT_EQ(PlatformKindOf(0x0000000A), PlatformKind::kNt);
  EXPECT_EQ(PlatformKindOf(0x7FFFFFFF), PlatformKind::kNt);
  EXPECT_EQ(PlatformKindOf(0xC0000A04), PlatformKind::k9x);
  EXPECT_EQ(PlatformKindOf(0x80000004), PlatformKind::k9x);
  EXPECT_EQ(PlatformKindOf(0x80000A03), PlatformKind::kOther);
}

TEST(IsNt6OrLater, ExtendedThenPlainStructure) {
  EXPECT_TRUE(IsNt6OrLater());
  static std::vector<DWORD> sizes;
  static OSVERSIONINFOW answer;
  sizes.clear();
  const ImportPatch patch(
      "GetVersionExW", +[](OSVERSIONINFOW* version) WINAPI -> BOOL {
        sizes.push_back(version->dwOSVersionInfoSize);
        if (version->dwOSVersionInfoSize != sizeof(OSVERSIONINFOW)) return FALSE;
        version->dwPlatformId = answer.dwPlatformId;
        version->dwMajorVersion = answer.dwMajorVersion;
        return answer.dwMajorVersion != 0;
      });
  const struct {
    DWORD platform, major;
    bool expected;
  } cases[] = {{VER_PLATFORM_WIN32_NT, 6, true},
               {VER_PLATFORM_WIN32_NT, 5, false},
               {VER_PLATFORM_WIN32_WINDOWS, 6, false},
               {VER_PLATFORM_WIN32_NT, 0, false}};
  for (const auto& c : cases) {
    answer.dwPlatformId = c.platform;
    answer.dwMajorVersion = c.major;
    EXPECT_EQ(IsNt6OrLater(), c.expected) << c.platform << " " << c.major;
  }
  EXPECT_EQ(std::vector<DWORD>(sizes.begin(), sizes.begin() + 2), (std::vector<DWORD>{284, 276}));
}

HANDLE deny_only_token = nullptr;

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
  // Wine runs every program with the group enabled.
  EXPECT_TRUE(IsAdministrator());

  KernelHandle own;
  ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, own.Receive()));
  BYTE sid[SECURITY_MAX_SID_SIZE];
  DWORD sid_size = sizeof(sid);
  ASSERT_TRUE(CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, sid, &sid_size));
  SID_AND_ATTRIBUTES disabled = {sid, 0};
  KernelHandle token;
  ASSERT_TRUE(
      CreateRestrictedToken(own.Get(), 0, 1, &disabled, 0, nullptr, 0, nullptr, token.Receive()));
  deny_only_token = token.Get();
  LateFunctions functions;
  functions.Replace("OpenProcessToken", OpenDenyOnlyToken);
  EXPECT_TRUE(IsAdministrator());

  // No token without the group can be made from one that has it, so its group list stands in.
  functions.Replace("GetTokenInformation", OneOtherGroup);
  EXPECT_FALSE(IsAdministrator());
}

TEST(IsAdministrator, AnyFunctionMissing_IsNone) {
  LateFunctions functions;
  for (const char* name : {"OpenProcessToken", "GetTokenInformation", "AllocateAndInitializeSid",
                           "EqualSid", "FreeSid"}) {
    functions.Restore();
    functions.Miss(name);
    EXPECT_FALSE(IsAdministrator()) << name;
  }
}

TEST(IsAdministrator, The9xFamily_AlwaysIs) {
  LateFunctions functions;
  functions.Miss("OpenProcessToken");
  const ImportPatch version(
      "GetVersion", +[]() WINAPI -> DWORD { return 0xC0000A04; });
  EXPECT_TRUE(IsAdministrator());
}

TEST(Wow64, FunctionsMissing_NothingIsSwitched) {
  EXPECT_FALSE(IsWow64());
  void* state = nullptr;
  LateFunctions functions;
  for (const char* name :
       {"IsWow64Process", "Wow64DisableWow64FsRedirection", "Wow64RevertWow64FsRedirection"}) {
    functions.Miss(name);
  }
  EXPECT_FALSE(IsWow64());
  EXPECT_FALSE(DisableFsRedirection(&state));
  EXPECT_FALSE(RevertFsRedirection(state));
}

}  // namespace
}  // namespace quillo
