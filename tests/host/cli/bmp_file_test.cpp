#include "host/cli/bmp_file.h"

#include <gtest/gtest.h>
#include <vector>

namespace quillo::host {
namespace {

// Two pixels of 4-4-4 bits, 100 a centimetre.
// clang-format off
const std::vector<uint16_t> kFile = {
    'B' | 'M' << 8, 70, 0, 0, 0, 66, 0,                         // where the bits are
    40, 0, 2, 0, 1, 0, 1, 16, 3, 0, 0, 0,                       // 2 x 1, 16 bits, bit fields
    10'000, 0, 10'000, 0, 0, 0, 0, 0,                           // pixels a metre
    0x0F00, 0, 0x00F0, 0, 0x000F, 0,                            // masks
    0x0F80, 0x008F};
// clang-format on

TEST(ReadBmp, BitFields_KeepTheirMasks) {
  const BmpPicture read = ReadBmp(std::as_bytes(std::span(kFile)));
  EXPECT_EQ(read.pixels.width, 2);
  EXPECT_EQ(read.pixels.height, 1);
  EXPECT_EQ(read.pixels.red_mask, 0x0F00u);
  EXPECT_EQ(read.pixels.blue_mask, 0x000Fu);
  EXPECT_EQ(LoadOrZero<uint32_t>(read.pixels.bits), 0x008F'0F80u);
  EXPECT_DOUBLE_EQ(read.dpi.x, 254);
}

TEST(ReadBmp, CutFiles_AreRefused) {
  const Bytes whole = std::as_bytes(std::span(kFile));
  for (size_t size = 0; size < whole.size(); ++size) {
    const std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
    EXPECT_THROW(ReadBmp(cut), UnreadablePicture) << size;
  }
}

}  // namespace
}  // namespace quillo::host
