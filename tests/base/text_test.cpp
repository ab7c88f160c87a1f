#include "base/text.h"

#include <gtest/gtest.h>
#include <string>

namespace quillo {
namespace {

TEST(FileNamePart, BothForms) {
  EXPECT_STREQ(FileNamePart("C:\\a\\b.txt"), "b.txt");
  EXPECT_STREQ(FileNamePart(L"b.txt"), L"b.txt");
  EXPECT_STREQ(FileNamePart(L"C:\\a\\"), L"");
}

TEST(BoundedCopies, EveryCount_EndsInATerminator) {
  using namespace std::string_literals;
  const std::string padded[] = {"######"s,  "\0#####"s, "a\0####"s,
                                "ab\0###"s, "abc\0##"s, "abc\0\0#"s};
  for (size_t count = 0; count < std::size(padded); ++count) {
    std::string narrow(6, '#');
    std::wstring wide(6, L'#'), bounded(6, L'#');
    CopyPadded(narrow.data(), "abc", count);
    CopyPadded(wide.data(), L"abc", count);
    EXPECT_EQ(narrow, padded[count]);
    EXPECT_EQ(wide, std::wstring(narrow.begin(), narrow.end()));
    EXPECT_EQ(CopyBounded(bounded.data(), L"abc", count), bounded.data());
    if (count == 5) wide[3] = L'\0';
    EXPECT_EQ(bounded, wide);
  }
}

}  // namespace
}  // namespace quillo
