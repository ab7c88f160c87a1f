#include "capture/records/conversions.h"

#include <gtest/gtest.h>

namespace quillo::records {
namespace {

TEST(FixToPixel, Halves_RoundTowardsPositiveInfinity) {
  const struct {
    int32_t fix, pixel;
  } cases[] = {{16, 1}, {8, 1}, {7, 0}, {0, 0}, {-8, 0}, {-9, -1}, {24, 2}, {-24, -1}, {-25, -2}};
  for (const auto& c : cases) EXPECT_EQ(FixToPixel(c.fix), c.pixel) << c.fix;
}

TEST(SwapRedBlue, OuterBytesStay) { EXPECT_EQ(SwapRedBlue(0xAB112233u), 0xAB332211u); }

}  // namespace
}  // namespace quillo::records
