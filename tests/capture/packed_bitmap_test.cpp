#include "capture/records/packed_bitmap.h"

#include <algorithm>
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
    const auto format = FindSurfaceFormat(c.format);
    ASSERT_TRUE(format) << c.format;
    EXPECT_EQ(format->bit_count, c.bit_count) << c.format;
    EXPECT_EQ(format->compression, c.compression) << c.format;
    EXPECT_EQ(PackedSize(*format, 100), c.size_of_100_bytes) << c.format;
  }
  for (const uint32_t format : {0u, 9u, 18u, 19u, 0xFFFFFFFFu}) {
    EXPECT_FALSE(FindSurfaceFormat(format)) << format;
  }
  EXPECT_EQ(PackedSize({24, kDibRgb}, UINT32_MAX - 44), UINT32_MAX);
  EXPECT_FALSE(PackedSize({24, kDibRgb}, UINT32_MAX - 43));
  EXPECT_FALSE(PackedSize({24, kDibRgb}, uint64_t{1} << 32));
}

// The pieces of a surface that holds `text`, in square brackets and with 0 for zero bytes.
std::string Pieces(std::string_view text, uint32_t row_size, uint32_t rows, bool top_down) {
  const SurfaceBits surface = {std::as_bytes(std::span(text)), row_size, rows, top_down};
  std::string pieces;
  size_t size = 0;
  ForEachPiece(surface, [&](Bytes piece) {
    pieces += '[' + std::string(reinterpret_cast<const char*>(piece.data()), piece.size()) + ']';
    size += piece.size();
  });
  EXPECT_EQ(size, surface.Size());
  std::ranges::replace(pieces, '\0', '0');
  return pieces;
}

TEST(ForEachPiece, Rows_BecomeBottomUpAndAddUp) {
  EXPECT_EQ(Pieces("aabbcc", 2, 4, false), "[aabbcc]");
  EXPECT_EQ(Pieces("aabbcc", 2, 3, true), "[cc][bb][aa]");
  EXPECT_EQ(Pieces("aabbccxyz", 2, 3, true), "[cc][bb][aa][xyz]");
  EXPECT_EQ(Pieces("aabbcc", 0, 3, true), "[aabbcc]");
  EXPECT_EQ(Pieces("", 2, 0, true), "");
  // Rows that are missing or cut off are filled up.
  EXPECT_EQ(Pieces("aabbcc", 2, 5, true), "[0000][cc][bb][aa]");
  EXPECT_EQ(Pieces("aabbc", 2, 4, true), "[00][c][0][bb][aa]");
  EXPECT_EQ(Pieces("a", 4097, 1, true), "[a][" + std::string(4096, '0') + "]");
  EXPECT_EQ(Pieces("a", 4098, 1, true), "[a][" + std::string(4096, '0') + "][0]");
  const SurfaceBits huge = {{}, 0x80000000, 0xFFFFFFFF, true};
  EXPECT_EQ(huge.Size(), 0x7FFFFFFF80000000u);
}

}  // namespace
}  // namespace quillo::records
