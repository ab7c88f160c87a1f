#include "capture/records/packed_bitmap.h"

#include <gtest/gtest.h>
#include <string>

namespace quillo::records {
namespace {

TEST(PackedSize, EveryFormat_HeaderTableAndBits) {
  const struct {
    uint32_t format;
    uint16_t bit_count;
    DibCompression compression;
    uint32_t size_of_100_bytes;
  } cases[] = {{1, 1, kDibRgb, 148},  {2, 4, kDibRgb, 204},  {3, 8, kDibRgb, 1164},
               {4, 16, kDibRgb, 144}, {5, 24, kDibRgb, 144}, {6, 32, kDibRgb, 144},
               {7, 4, kDibRle4, 204}, {8, 8, kDibRle8, 1164}};
  for (const auto& c : cases) {
    const auto format = FindPixelFormat(c.format);
    ASSERT_TRUE(format) << c.format;
    EXPECT_EQ(format->bit_count, c.bit_count) << c.format;
    EXPECT_EQ(format->compression, c.compression) << c.format;
    EXPECT_EQ(PackedSize(c.format, 100), c.size_of_100_bytes) << c.format;
  }
  for (const uint32_t format : {0u, 9u, 18u, 19u, 0xFFFFFFFFu}) {
    EXPECT_FALSE(PackedSize(format, 100)) << format;
  }
  EXPECT_EQ(PackedSize(5, UINT32_MAX - 44), UINT32_MAX);
  EXPECT_FALSE(PackedSize(5, UINT32_MAX - 43));
}

// The pieces of a surface that holds `text`, in square brackets; "" when its rows do not fit.
std::string Pieces(std::string_view text, uint32_t row_size, uint32_t rows, bool top_down) {
  const SurfaceBits surface = {std::as_bytes(std::span(text)), row_size, rows, top_down};
  std::string pieces;
  if (!surface.Fits()) return pieces;
  ForEachPiece(surface, [&pieces](Bytes piece) {
    pieces += '[' + std::string(reinterpret_cast<const char*>(piece.data()), piece.size()) + ']';
  });
  return pieces;
}

TEST(ForEachPiece, Rows_BecomeBottomUpAndAddUp) {
  EXPECT_EQ(Pieces("aabbcc", 2, 4, false), "[aabbcc]");
  EXPECT_EQ(Pieces("aabbcc", 2, 3, true), "[cc][bb][aa]");
  EXPECT_EQ(Pieces("aabbccxyz", 2, 3, true), "[cc][bb][aa][xyz]");
  EXPECT_EQ(Pieces("aabbcc", 0, 3, true), "[aabbcc]");
  EXPECT_EQ(Pieces("aabbcc", 2, 4, true), "");
  EXPECT_EQ(Pieces("aabbcc", 0x80000000, 0xFFFFFFFF, true), "");
}

}  // namespace
}  // namespace quillo::records
