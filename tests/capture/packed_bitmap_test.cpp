#include "capture/records/packed_bitmap.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillo::records {
namespace {

TEST(PackedSize, EveryFormat_HeaderTableAndBits) {
  const struct {
    uint32_t format;
    uint16_t bit_count;
    uint32_t compression, size_of_100_bytes;
  } cases[] = {{1, 1, 0, 148},  {2, 4, 0, 204},  {3, 8, 0, 1164}, {4, 16, 0, 144},
               {5, 24, 0, 144}, {6, 32, 0, 144}, {7, 4, 2, 204},  {8, 8, 1, 1164}};
  for (const auto& c : cases) {
    const auto format = FindPixelFormat(c.format);
    ASSERT_TRUE(format) << c.format;
    EXPECT_EQ(format->bit_count, c.bit_count) << c.format;
    EXPECT_EQ(format->compression, c.compression) << c.format;
    EXPECT_EQ(PackedSize(c.format, 100), c.size_of_100_bytes) << c.format;
  }
}

TEST(PackedSize, NoBitCountOrTooLarge_Nothing) {
  for (const uint32_t format : {0u, 9u, 10u, 18u, 19u, 0xFFFFFFFFu}) {
    EXPECT_FALSE(PackedSize(format, 100)) << format;
  }
  EXPECT_EQ(PackedSize(5, UINT32_MAX - 44), UINT32_MAX);
  EXPECT_FALSE(PackedSize(5, UINT32_MAX - 43));
}

// The pieces of a surface that holds `text`, in square brackets.
std::string Pieces(const std::string& text, uint32_t row_size, uint32_t rows, bool top_down) {
  const SurfaceBits surface = {std::as_bytes(std::span(text)), row_size, rows, top_down};
  EXPECT_TRUE(surface.Fits());
  std::string pieces;
  ForEachPiece(surface, [&](Bytes piece) {
    pieces += '[' + std::string(reinterpret_cast<const char*>(piece.data()), piece.size()) + ']';
  });
  return pieces;
}

TEST(ForEachPiece, Rows_BecomeBottomUpAndAddUp) {
  EXPECT_EQ(Pieces("aabbcc", 2, 3, false), "[aabbcc]");
  EXPECT_EQ(Pieces("aabbcc", 2, 3, true), "[cc][bb][aa]");
  EXPECT_EQ(Pieces("aabbccxyz", 2, 3, true), "[cc][bb][aa][xyz]");
  EXPECT_EQ(Pieces("aabbcc", 0, 3, true), "[aabbcc]");
  EXPECT_EQ(Pieces("aabbcc", 2, 0, true), "[aabbcc]");
  EXPECT_EQ(Pieces("", 4, 0, true), "");
}

TEST(SurfaceBits, RowsBeyondTheBits_DoNotFit) {
  const std::vector<std::byte> bits(12);
  EXPECT_TRUE((SurfaceBits{bits, 4, 3, true}.Fits()));
  EXPECT_FALSE((SurfaceBits{bits, 4, 4, true}.Fits()));
  EXPECT_TRUE((SurfaceBits{bits, 4, 4, false}.Fits()));
  EXPECT_FALSE((SurfaceBits{bits, 0x80000000, 0xFFFFFFFF, true}.Fits()));
}

}  // namespace
}  // namespace quillo::records
