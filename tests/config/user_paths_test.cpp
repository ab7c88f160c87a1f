#include "config/user/user_paths.h"

#include <gtest/gtest.h>

#include "support/late_functions.h"
#include "support/registry_sandbox.h"
#include "support/watch.h"

namespace quillo {
namespace {

using namespace test;

/// A thread token that may not be opened. Whether the process may is what has to count.
BOOL WINAPI RefuseThreadToken(HANDLE, DWORD, BOOL open_as_self, HANDLE*) {
  EXPECT_TRUE(open_as_self);
  SetLastError(ERROR_ACCESS_DENIED);
  return FALSE;
}

TEST(UserToken, SessionThenThreadThenProcess) {
  LateFunctions functions;
  const KernelHandle token = UserToken();
  TOKEN_TYPE type = {};
  DWORD size = 0;
  ASSERT_TRUE(GetTokenInformation(token.Get(), TokenType, &type, sizeof(type), &size));
  EXPECT_EQ(type, TokenPrimary);
  functions.Miss("DuplicateTokenEx");
  EXPECT_FALSE(UserToken());
  functions.Restore();

  functions.Miss("WTSQueryUserToken");
  EXPECT_TRUE(UserToken());
  functions.Miss("OpenProcessToken");
  EXPECT_FALSE(UserToken());
  ASSERT_TRUE(ImpersonateSelf(SecurityImpersonation));
  EXPECT_TRUE(UserToken());
  RevertToSelf();
  // It is no reason to take the process's.
  functions.Restore();
  functions.Miss("WTSQueryUserToken");
  functions.Replace("OpenThreadToken", RefuseThreadToken);
  EXPECT_FALSE(UserToken());
}

TEST(PrintingUserSession, IsThatOfTheCaller) {
  DWORD session = ~DWORD{0}, expected = 0;
  ASSERT_TRUE(PrintingUserSession(session));
  ASSERT_TRUE(ProcessIdToSessionId(GetCurrentProcessId(), &expected));
  EXPECT_EQ(session, expected);
  LateFunctions functions;
  functions.Miss("GetTokenInformation");
  EXPECT_FALSE(PrintingUserSession(session));
  functions.Replace("OpenThreadToken", RefuseThreadToken);
  EXPECT_FALSE(PrintingUserSession(session));
}

TEST(UserTempFolder, NoRoomAndNoExpansion) {
  const RegistrySandbox sandbox;
  LateFunctions functions;
  wchar_t spoolers[MAX_PATH], folder[MAX_PATH] = L"x";
  const DWORD spoolers_length = GetTempPathW(MAX_PATH, spoolers);
  EXPECT_EQ(UserTempFolder(folder, 0), 0u);
  EXPECT_EQ(UserTempFolder(nullptr, MAX_PATH), 0u);
  PutValue(HKEY_CURRENT_USER, L"Environment", L"TMP", Terminated(L"C:\\tmp"));
  functions.Miss("ExpandEnvironmentStringsForUserW");
  EXPECT_EQ(UserTempFolder(folder, MAX_PATH), spoolers_length);
  EXPECT_STREQ(folder, spoolers);
  EXPECT_EQ(UserTempFolder(folder, 3), 0u);

  static bool for_a_user;
  functions.Replace(
      "ExpandEnvironmentStringsForUserW",
      +[](HANDLE token, const wchar_t*, wchar_t* out, DWORD) WINAPI {
        DWORD session = 0, size = 0;
        for_a_user = GetTokenInformation(token, TokenSessionId, &session, sizeof session, &size);
        lstrcpyW(out, L"half");
        return FALSE;
      });
  EXPECT_EQ(UserTempFolder(folder, MAX_PATH), 0u);
  EXPECT_TRUE(for_a_user);
  EXPECT_STREQ(folder, L"");
  RegDeleteKeyValueW(HKEY_CURRENT_USER, L"Environment", L"TMP");
  EXPECT_EQ(UserTempFolder(folder, MAX_PATH), spoolers_length);
  EXPECT_STREQ(folder, L"");
  const WATCH(GetTempPathW) too_long(DWORD{MAX_PATH});  // all the room that it has
  EXPECT_EQ(UserTempFolder(folder, MAX_PATH), 0u);
}

}  // namespace
}  // namespace quillo
