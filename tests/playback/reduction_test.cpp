#include "playback/reduction.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

struct ReductionCase {
  int32_t width;
  int32_t height;
  ReductionScale expected;
};

TEST(FindReduction, LimitsOfTwoThousand_Table) {
  const ReductionCase kCases[] = {
      {2000, 2000, {1, 1}},        // at the limits
      {1, 1, {1, 1}},              //
      {4000, 1000, {2000, 4000}},  // only the width is over
      {2001, 2000, {2000, 2001}},  //
      {1000, 4000, {2000, 4000}},  // only the height is over
      {2000, 2001, {2000, 2001}},  //
      {3000, 5000, {2000, 3000}},  // both: the width decides, the height stays above
      {5000, 3000, {2000, 5000}},  //
      {INT32_MAX, INT32_MAX, {2000, INT32_MAX}},
  };
  for (const ReductionCase& c : kCases) {
    const auto scale = FindReduction(c.width, c.height, {2000, 2000});
    EXPECT_EQ(scale, c.expected) << c.width << 'x' << c.height;
  }
}

TEST(FindReduction, DefaultLimits_PageOfA3At600DpiUnreduced) {
  constexpr int32_t kWidth = 297 * 600 * 10 / 254;
  constexpr int32_t kHeight = 420 * 600 * 10 / 254;
  EXPECT_EQ(FindReduction(kWidth, kHeight, kDefaultBitmapLimits), ReductionScale{});
  EXPECT_EQ(FindReduction(kHeight, kWidth, kDefaultBitmapLimits), ReductionScale{});
}

}  // namespace
}  // namespace quillo
