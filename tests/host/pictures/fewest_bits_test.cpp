#include "host/pictures/fewest_bits.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "host/engine/raster.h"

namespace quillo::host {
namespace {

TEST(WithFewestBits, Pixels_KeepTheirColors) {
  const struct {
    uint32_t colors;
    uint16_t bits;
  } cases[] = {{1, 1}, {2, 1}, {3, 4}, {16, 4}, {17, 8}, {256, 8}, {257, 24}};
  for (const auto& test : cases) {
    BitmapSource picture;
    picture.width = 37;
    picture.height = 11;
    picture.bits_per_pixel = 24;
    picture.top_down = true;
    picture.bits.resize(picture.Stride() * 11);
    for (size_t i = 0; i < 37 * 11; ++i) {
      // Multiples of an odd number: all channels vary, and colours that hash alike are among them.
      const auto color = static_cast<uint32_t>((test.colors - 1 - i % test.colors) * 0x04B5D7);
      std::memcpy(&picture.bits[i / 37 * picture.Stride() + i % 37 * 3], &color, 3);
    }
    const BitmapSource packed = WithFewestBits(picture);
    EXPECT_EQ(packed.bits_per_pixel, test.bits) << test.colors;
    EXPECT_TRUE(std::ranges::is_sorted(packed.palette)) << test.colors;
    const PixelReader before(picture), after(packed);
    for (LONG y = 0; y < 11; ++y) {
      for (LONG x = 0; x < 37; ++x) ASSERT_EQ(after.Color(x, y), before.Color(x, y)) << test.colors;
    }
  }
}

}  // namespace
}  // namespace quillo::host
