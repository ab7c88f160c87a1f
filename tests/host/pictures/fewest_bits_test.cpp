#include "host/pictures/fewest_bits.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "host/engine/raster.h"
#include "tests/host/pictures/picture24.h"

namespace quillo::host {
namespace {

TEST(WithFewestBits, Pixels_KeepTheirColours) {
  const struct {
    uint32_t colours;
    uint16_t bits;
  } cases[] = {{1, 1}, {2, 1}, {3, 4}, {16, 4}, {17, 8}, {256, 8}, {257, 24}};
  for (const auto& test : cases) {
    // Multiples of an odd number: all channels vary, and colours that hash alike are among them.
    const BitmapSource picture = Picture24(
        37, 11, [&](size_t i) { return (test.colours - 1 - i % test.colours) * 0x04B5D7; });
    const BitmapSource packed = WithFewestBits(picture);
    EXPECT_EQ(packed.bits_per_pixel, test.bits) << test.colours;
    EXPECT_TRUE(std::ranges::is_sorted(packed.palette)) << test.colours;
    const PixelReader before(picture), after(packed);
    for (LONG i = 0; i < 37 * 11; ++i) {
      ASSERT_EQ(after.Colour(i % 37, i / 37), before.Colour(i % 37, i / 37)) << test.colours;
    }
  }
}

}  // namespace
}  // namespace quillo::host
