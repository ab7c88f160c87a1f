#include "config/message_box.h"

#include <gtest/gtest.h>
#include <string>

#include "resources/string_ids.h"
#include "support/built_file.h"
#include "support/import_patch.h"

namespace quillo {
namespace {

struct Shown {
  HWND owner;
  std::wstring text, caption;
  UINT style;
};
Shown shown;

int WINAPI Show(HWND owner, const wchar_t* text, const wchar_t* caption, UINT style) {
  shown = {owner, text != nullptr ? text : L"", caption != nullptr ? caption : L"", style};
  return IDRETRY;
}

class MessageBoxTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(resources_); }

  test::ImportPatch patch_{"MessageBoxW", Show};
  Library resources_{LoadLibraryW(test::BuiltFile(L"QXRES06X.dll").c_str())};
};

TEST_F(MessageBoxTest, ResourceMessage_ShowsBothStrings) {
  EXPECT_EQ(
      ShowResourceMessage(resources_.Get(), IDS_NO_MORE_CUSTOM_PAPERS, IDS_ERROR, MB_RETRYCANCEL),
      IDRETRY);
  EXPECT_EQ(shown.owner, nullptr);
  EXPECT_EQ(shown.text, L"Can not add another custom paper!");
  EXPECT_EQ(shown.caption, L"Error");
  EXPECT_EQ(shown.style, UINT{MB_RETRYCANCEL});
}

TEST_F(MessageBoxTest, ResourceString_OverwritesThePreviousOne) {
  const wchar_t* first = ResourceString(resources_.Get(), IDS_ERROR);
  EXPECT_STREQ(first, L"Error");
  const wchar_t* second = ResourceString(resources_.Get(), IDS_NO_MORE_CUSTOM_PAPERS);
  EXPECT_EQ(first, second);
  EXPECT_STREQ(first, L"Can not add another custom paper!");
  EXPECT_STREQ(ResourceString(resources_.Get(), 999), L"");
}

TEST_F(MessageBoxTest, LastError_ShowsTheSystemsText) {
  SetLastError(ERROR_FILE_NOT_FOUND);
  ShowLastError();
  const LocalBlock expected = SystemMessage(ERROR_FILE_NOT_FOUND);
  ASSERT_TRUE(expected);
  EXPECT_EQ(shown.text, static_cast<const wchar_t*>(expected.Get()));
  EXPECT_EQ(shown.caption, L"Error");
  EXPECT_EQ(shown.style, 64u);

  SetLastError(0xDEADBEEF);
  ShowLastError();
  EXPECT_EQ(shown.text, L"");
}

}  // namespace
}  // namespace quillo
