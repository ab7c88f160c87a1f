#include "config/user_paths.h"

#include <cstring>
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "support/late_functions.h"
#include "support/registry_sandbox.h"

namespace quillo {
namespace {

using test::LateFunctions;
using test::RegistrySandbox;

TEST(UserToken, IsAPrimaryTokenOfThisUser) {
  const KernelHandle token = UserToken();
  ASSERT_TRUE(token);
  TOKEN_TYPE type = {};
  DWORD size = 0;
  ASSERT_TRUE(GetTokenInformation(token.Get(), TokenType, &type, sizeof(type), &size));
  EXPECT_EQ(type, TokenPrimary);
}

TEST(UserToken, WithoutSessions_ThreadThenProcess) {
  static int asked;
  LateFunctions functions;
  functions.Miss("WTSQueryUserToken");
  EXPECT_TRUE(UserToken());
  ASSERT_TRUE(ImpersonateSelf(SecurityImpersonation));
  functions.Miss("OpenProcessToken");
  EXPECT_TRUE(UserToken());
  RevertToSelf();
  EXPECT_FALSE(UserToken());
  // A thread token that may not be opened is no reason to take the process's.
  functions.Restore();
  functions.Miss("WTSQueryUserToken");
  functions.Replace(
      "OpenThreadToken", +[](HANDLE, DWORD, BOOL, HANDLE*) WINAPI -> BOOL {
        ++asked;
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
      });
  EXPECT_FALSE(UserToken());
  EXPECT_EQ(asked, 1);
}

TEST(PrintingUserSession, IsThatOfTheCaller) {
  DWORD session = ~DWORD{0};
  DWORD expected = 0;
  ASSERT_TRUE(PrintingUserSession(session));
  ASSERT_TRUE(ProcessIdToSessionId(GetCurrentProcessId(), &expected));
  EXPECT_EQ(session, expected);
}

/// A value as it is stored: a terminator only where it is spelled out.
struct Value {
  DWORD type;
  std::wstring text;
  size_t cut = 0;  // bytes to leave out at the end
};

std::wstring Terminated(std::wstring text) { return text + L'\0'; }

class UserTempFolderTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(sandbox_.Active());
    wchar_t temp[MAX_PATH] = {};
    ASSERT_GT(GetTempPathW(MAX_PATH, temp), 0u);
    spoolers_ = temp;
  }

  static void Put(const wchar_t* name, const std::optional<Value>& value) {
    HKEY key;
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, L"Environment", &key), ERROR_SUCCESS);
    if (value) {
      // A terminator right behind the data would be stored with it.
      const std::wstring guarded = value->text + L'#';
      const auto size = static_cast<DWORD>(value->text.size() * sizeof(wchar_t) - value->cut);
      RegSetValueExW(key, name, 0, value->type, reinterpret_cast<const BYTE*>(guarded.data()),
                     size);
    } else {
      RegDeleteValueW(key, name);
    }
    RegCloseKey(key);
  }

  RegistrySandbox sandbox_;
  std::wstring spoolers_;
};

TEST_F(UserTempFolderTest, NoEnvironmentKey_Fails) {
  wchar_t folder[MAX_PATH] = L"x";
  EXPECT_EQ(UserTempFolder(folder, MAX_PATH), 0u);
  EXPECT_STREQ(folder, L"");
  EXPECT_EQ(UserTempFolder(folder, 0), 0u);
  EXPECT_EQ(UserTempFolder(nullptr, MAX_PATH), 0u);
}

TEST_F(UserTempFolderTest, EveryValue_FirstUsableWins) {
  const std::wstring long_text(130, L'a');  // 260 bytes without, 262 with its terminator
  const Value temp = {REG_SZ, Terminated(L"C:\\temp")};
  const struct {
    const char* what;
    std::optional<Value> tmp, temp;
    std::wstring expected;
  } cases[] = {
      {"both", Value{REG_SZ, Terminated(L"C:\\tmp")}, temp, L"C:\\tmp"},
      {"no TMP", std::nullopt, temp, L"C:\\temp"},
      {"neither", std::nullopt, std::nullopt, spoolers_},
      {"no terminator", Value{REG_SZ, L"C:\\tmp"}, temp, L"C:\\tmp"},
      {"odd length", Value{REG_SZ, L"C:\\tmpX", 1}, temp, L"C:\\tmp"},
      {"0 bytes", Value{REG_SZ, L""}, temp, L"C:\\temp"},
      {"only a terminator", Value{REG_SZ, Terminated(L"")}, temp, L"C:\\temp"},
      {"a number", Value{REG_DWORD, L"ab"}, temp, L"C:\\temp"},
      {"260 bytes", Value{REG_SZ, long_text}, temp, long_text},
      {"262 bytes", Value{REG_SZ, Terminated(long_text)}, temp, L"C:\\temp"},
      {"1 MiB", Value{REG_SZ, std::wstring(1 << 19, L'a')}, temp, L"C:\\temp"},
      {"variable", Value{REG_EXPAND_SZ, Terminated(L"%SystemDrive%\\t")}, temp, L"C:\\t"},
  };
  for (const auto& c : cases) {
    Put(L"TMP", c.tmp);
    Put(L"TEMP", c.temp);
    wchar_t folder[MAX_PATH];
    std::memset(folder, 0xAA, sizeof(folder));
    EXPECT_EQ(UserTempFolder(folder, MAX_PATH), DWORD{MAX_PATH}) << c.what;
    EXPECT_EQ(std::wstring(folder), c.expected) << c.what;
  }
}

TEST_F(UserTempFolderTest, ExpansionMissingOrFailing) {
  Put(L"TMP", Value{REG_SZ, Terminated(L"C:\\tmp")});
  wchar_t folder[MAX_PATH];
  LateFunctions functions;
  functions.Miss("ExpandEnvironmentStringsForUserW");
  EXPECT_EQ(UserTempFolder(folder, MAX_PATH), spoolers_.size());
  EXPECT_EQ(std::wstring(folder), spoolers_);
  EXPECT_EQ(UserTempFolder(folder, 3), 0u);

  functions.Replace(
      "ExpandEnvironmentStringsForUserW",
      +[](HANDLE, const wchar_t*, wchar_t* out, DWORD) WINAPI -> BOOL {
        lstrcpyW(out, L"half");
        return FALSE;
      });
  EXPECT_EQ(UserTempFolder(folder, MAX_PATH), 0u);
  EXPECT_STREQ(folder, L"");
  Put(L"TMP", std::nullopt);
  EXPECT_EQ(UserTempFolder(folder, MAX_PATH), spoolers_.size());
  EXPECT_STREQ(folder, L"");
}

}  // namespace
}  // namespace quillo
