#include "playback/reduction.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

TEST(FindReduction, LimitsOfTwoThousand_Table) {
  const struct {
    int32_t width, height;
    ReductionScale expected;
  } kCases[] = {
      {2000, 2000, {1, 1}},       {4000, 1000, {2000, 4000}},  // only the width is over
      {1000, 4000, {2000, 4000}}, {2000, 2001, {2000, 2001}},  // only the height is over
      {3000, 5000, {2000, 3000}}, {5000, 3000, {2000, 5000}},  // both: the width decides
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(FindReduction(c.width, c.height, {2000, 2000}), c.expected)
        << c.width << 'x' << c.height;
  }
  // A sheet of A3 at 600 dpi.
  EXPECT_EQ(FindReduction(297 * 6000 / 254, 420 * 6000 / 254, kDefaultBitmapLimits),
            ReductionScale{});
}

}  // namespace
}  // namespace quillo
