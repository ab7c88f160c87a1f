#include <array>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "base/arithmetic.h"
#include "base/bytes.h"
#include "base/text.h"

namespace quillo {
namespace {

TEST(Checked, Overflow_Nothing) {
  EXPECT_EQ(CheckedAdd<int32_t>(2, 3), 5);
  EXPECT_EQ(CheckedAdd(std::numeric_limits<int32_t>::max(), 1), std::nullopt);
  EXPECT_EQ(CheckedMultiply<uint32_t>(65535, 65537), 0xFFFFFFFFu);
  EXPECT_EQ(CheckedMultiply<uint32_t>(65536, 65536), std::nullopt);
}

TEST(Checked, RangeFits_EveryEdge) {
  EXPECT_TRUE(RangeFits(10, 0, 10));
  EXPECT_TRUE(RangeFits(10, 10, 0));
  EXPECT_FALSE(RangeFits(10, 10, 1));
  EXPECT_FALSE(RangeFits(10, 11, 0));
  EXPECT_FALSE(RangeFits(10, 1, std::numeric_limits<size_t>::max()));
}

TEST(TruncateToInt, OutOfRange_Saturates) {
  EXPECT_EQ(TruncateToInt(-2.9f), -2);
  EXPECT_EQ(TruncateToInt(3e9f), INT32_MAX);
  EXPECT_EQ(TruncateToInt(-INFINITY), INT32_MIN);
  EXPECT_EQ(TruncateToInt(NAN), 0);
}

TEST(Bytes, LoadOrZero_MissingBytesReadAsZero) {
  const std::array bytes = {std::byte{0x11}, std::byte{0x22}, std::byte{0x33}, std::byte{0x44}};
  EXPECT_EQ(LoadOrZero<uint32_t>(bytes), 0x44332211u);
  EXPECT_EQ(LoadOrZero<uint32_t>(bytes, 2), 0x00004433u);
  EXPECT_EQ(LoadOrZero<uint32_t>(bytes, 4), 0u);
  EXPECT_EQ(LoadOrZero<uint32_t>(bytes, static_cast<size_t>(-1)), 0u);
}

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
