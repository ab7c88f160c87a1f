#include "host/pictures/bmp_file.h"

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

TEST(ReadBmp, RunLengths_LeaveIndex0AndNameDamage) {
  // 4 x 2 pixels of 8 bits in two colours.
  // clang-format off
  const std::vector<uint16_t> header = {
      'B' | 'M' << 8, 0, 0, 0, 0, 62, 0,
      40, 0, 4, 0, 2, 0, 1, 8, 1, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0xFFFF, 0xFF};
  // clang-format on
  const char* const cut = "its run-length code is damaged: it ends before the picture does";
  const char* const over = "its run-length code is damaged: it runs past the picture's edges";
  const struct {
    std::vector<uint16_t> code;  // run or escape, each two bytes
    uint32_t bottom, top;        // the rows
    const char* damage;
  } cases[] = {
      {{0x0103, 0x0000, 0x0104, 0x0100}, 0x00010101, 0x01010101, ""},
      {{0x0102, 0x0200, 0x0101, 0x0101, 0x0100}, 0x00000101, 0x01000000, ""},  // a step of 1 and 1
      {{0x0300, 0x0101, 0x0001, 0x0000, 0x0104}, 0x00010101, 0x01010101, ""},  // no end
      {{0x0105, 0x0000, 0x0104, 0x0100}, 0x01010101, 0x01010101, over},
      {{0x0104, 0x0000, 0x0102}, 0x01010101, 0x00000101, cut},
      {{0x0104, 0x0000, 0x0400, 0x0101}, 0x01010101, 0x00000101, cut},
      {{}, 0, 0, cut},
  };
  for (const auto& test : cases) {
    std::vector<uint16_t> file = header;
    file.insert(file.end(), test.code.begin(), test.code.end());
    const Bytes bytes = std::as_bytes(std::span(file));
    EXPECT_TRUE(IsRunLengthBmp(bytes));
    const BmpPicture read = ReadBmp(bytes);
    EXPECT_EQ(LoadOrZero<uint32_t>(read.pixels.bits), test.bottom) << &test - cases;
    EXPECT_EQ(LoadOrZero<uint32_t>(read.pixels.bits, 4), test.top) << &test - cases;
    EXPECT_EQ(read.damage, test.damage) << &test - cases;
  }
  EXPECT_FALSE(IsRunLengthBmp(std::as_bytes(std::span(kFile))));
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
