#include "config/user/user_paths.h"

#include <gtest/gtest.h>

#include "support/late_functions.h"
#include "support/registry_sandbox.h"

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

class UserTempFolderTest : public testing::Test {
 protected:
  UserTempFolderTest() { GetTempPathW(MAX_PATH, spoolers_); }

  RegistrySandbox sandbox_;
  LateFunctions functions_;
  wchar_t spoolers_[MAX_PATH];
  wchar_t folder_[MAX_PATH] = L"x";
};

TEST_F(UserTempFolderTest, NoEnvironmentKey_Fails) {
  EXPECT_EQ(UserTempFolder(folder_, MAX_PATH), 0u);
  EXPECT_STREQ(folder_, L"");
  EXPECT_EQ(UserTempFolder(folder_, 0), 0u);
  EXPECT_EQ(UserTempFolder(nullptr, MAX_PATH), 0u);
}

TEST_F(UserTempFolderTest, FirstUsableValueWins) {
  const std::wstring long_text(130, L'a');  // 260 bytes without, 262 with its terminator
  const StoredValue temp = Terminated(L"C:\\temp");
  StoredValue odd = Text(std::wstring(L"C:\\tmpX")), variable = Terminated(L"%SystemDrive%\\t");
  odd.bytes.pop_back();
  variable.type = REG_EXPAND_SZ;
  const struct {
    const char* what;
    std::optional<StoredValue> tmp, temp;
    std::wstring expected;
  } cases[] = {
      {"both", Terminated(L"C:\\tmp"), temp, L"C:\\tmp"},
      {"no TMP", {}, temp, L"C:\\temp"},
      {"neither", {}, {}, spoolers_},
      {"no terminator", Text(std::wstring(L"C:\\tmp")), temp, L"C:\\tmp"},
      {"odd length", odd, temp, L"C:\\tmp"},
      {"0 bytes", Zeros(0), temp, L"C:\\temp"},
      {"only a terminator", Terminated(L""), temp, L"C:\\temp"},
      {"a number", Number(0x00620061), temp, L"C:\\temp"},
      {"260 bytes", Text(long_text), temp, long_text},
      {"262 bytes", Terminated(long_text), temp, L"C:\\temp"},
      {"1 MiB", Text(std::wstring(1 << 19, L'a')), temp, L"C:\\temp"},
      {"variable", variable, temp, L"C:\\t"},
  };
  for (const auto& c : cases) {
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Environment");
    PutValue(HKEY_CURRENT_USER, L"Environment", L"other", Number(1));
    if (c.tmp) PutValue(HKEY_CURRENT_USER, L"Environment", L"TMP", *c.tmp);
    if (c.temp) PutValue(HKEY_CURRENT_USER, L"Environment", L"TEMP", *c.temp);
    EXPECT_EQ(UserTempFolder(folder_, MAX_PATH), DWORD{MAX_PATH}) << c.what;
    EXPECT_EQ(std::wstring(folder_), c.expected) << c.what;
  }
}

TEST_F(UserTempFolderTest, ExpansionMissingOrFailing) {
  const auto spoolers_length = static_cast<DWORD>(lstrlenW(spoolers_));
  PutValue(HKEY_CURRENT_USER, L"Environment", L"TMP", Terminated(L"C:\\tmp"));
  functions_.Miss("ExpandEnvironmentStringsForUserW");
  EXPECT_EQ(UserTempFolder(folder_, MAX_PATH), spoolers_length);
  EXPECT_STREQ(folder_, spoolers_);
  EXPECT_EQ(UserTempFolder(folder_, 3), 0u);

  static bool for_a_user;
  functions_.Replace(
      "ExpandEnvironmentStringsForUserW",
      +[](HANDLE token, const wchar_t*, wchar_t* out, DWORD) WINAPI {
        DWORD session = 0, size = 0;
        for_a_user = GetTokenInformation(token, TokenSessionId, &session, sizeof session, &size);
        lstrcpyW(out, L"half");
        return FALSE;
      });
  EXPECT_EQ(UserTempFolder(folder_, MAX_PATH), 0u);
  EXPECT_TRUE(for_a_user);
  EXPECT_STREQ(folder_, L"");
  RegDeleteKeyValueW(HKEY_CURRENT_USER, L"Environment", L"TMP");
  EXPECT_EQ(UserTempFolder(folder_, MAX_PATH), spoolers_length);
  EXPECT_STREQ(folder_, L"");
}

}  // namespace
}  // namespace quillo
