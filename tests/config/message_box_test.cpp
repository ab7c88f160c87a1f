#include "config/platform/message_box.h"

#include <gtest/gtest.h>
#include <string>

#include "base/system_owners.h"
#include "resources/string_ids.h"
#include "support/built_file.h"
#include "support/import_patch.h"

namespace quillo {
namespace {

std::wstring shown;  // "caption: text, style"

int WINAPI Show(HWND, const wchar_t* text, const wchar_t* caption, UINT style) {
  shown = std::wstring(caption) + L": " + (text != nullptr ? text : L"");
  shown += L", " + std::to_wstring(style);
  return IDRETRY;
}

TEST(MessageBox, TextsOfResourcesAndOfTheSystem) {
  const test::ImportPatch patch("MessageBoxW", Show);
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

  const wchar_t* first = ResourceString(resources.Get(), IDS_ERROR);
  EXPECT_STREQ(first, L"Error");
  EXPECT_EQ(ResourceString(resources.Get(), IDS_NO_MORE_CUSTOM_PAPERS), first);
  EXPECT_STREQ(first, L"Can not add another custom paper!");
  EXPECT_STREQ(ResourceString(resources.Get(), 999), L"");
}

}  // namespace
}  // namespace quillo
