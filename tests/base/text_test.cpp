#include "base/text.h"

#include <gtest/gtest.h>
#include <string>

namespace quillo {
namespace {

TEST(FileNamePart, BothForms) {
  EXPECT_STREQ(FileNamePart("C:\\a\\b.txt"), "b.txt");
  EXPECT_STREQ(FileNamePart(L"b.txt"), L"b.txt");
  EXPECT_STREQ(FileNamePart(L"C:\\a\\"), L"");
  EXPECT_STREQ(FileNamePart(""), "");
}

TEST(CopyPadded, EveryCount_FillsExactlyThat) {
  for (size_t count = 0; count <= 6; ++count) {
    char narrow[8];
    wchar_t wide[8];
    std::fill_n(narrow, 8, '#');
    std::fill_n(wide, 8, L'#');
    CopyPadded(narrow, "abc", count);
    CopyPadded(wide, L"abc", count);
    for (size_t i = 0; i < 8; ++i) {
      const char expected = i >= count ? '#' : i + 1 < count && i < 3 ? "abc"[i] : '\0';
      EXPECT_EQ(narrow[i], expected) << count << " at " << i;
      EXPECT_EQ(wide[i], static_cast<wchar_t>(expected)) << count << " at " << i;
    }
  }
}

TEST(CopyBounded, EveryCount_EndsInATerminator) {
  for (size_t count = 1; count <= 6; ++count) {
    wchar_t text[8];
    std::fill_n(text, 8, L'#');
    EXPECT_EQ(CopyBounded(text, L"abc", count), text);
    EXPECT_EQ(std::wstring(text), std::wstring(L"abc").substr(0, count - 1)) << count;
    EXPECT_EQ(text[count - 1], L'\0') << count;
    EXPECT_EQ(text[count], L'#') << count;
  }
}

}  // namespace
}  // namespace quillo
