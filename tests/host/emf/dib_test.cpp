#include "host/pictures/dib.h"

#include <gtest/gtest.h>
#include <memory>

namespace quillo::host::emf {
namespace {

std::vector<std::byte> Pack(const std::vector<uint32_t>& words) {
  std::vector<std::byte> bytes(words.size() * 4);
  std::memcpy(bytes.data(), words.data(), bytes.size());
  return bytes;
}

/// A BITMAPINFOHEADER, and what follows it.
std::vector<std::byte> Info(int32_t width, int32_t height, uint32_t depth, uint32_t compression,
                            uint32_t colours_used = 0, const std::vector<uint32_t>& after = {}) {
  const auto columns = static_cast<uint32_t>(width), rows = static_cast<uint32_t>(height);
  std::vector<uint32_t> words = {40, columns, rows, 1 | depth << 16, compression,
                                 0,  0,       0,    colours_used,    0};
  words.insert(words.end(), after.begin(), after.end());
  return Pack(words);
}

std::optional<Dib> Parse(const std::vector<std::byte>& info, size_t bit_bytes,
                         DibColors colours = DibColors::kRgb, uint32_t rows = 0) {
  static const std::vector<uint32_t> kPalette = {0x0A0A0A, 0x0B0B0B, 0x0C0C0C};
  static const std::vector<std::byte> kBits(1 << 16);
  std::string what;
  auto dib = ParseDib(info, Bytes(kBits).first(bit_bytes), colours, rows, kPalette, what);
  EXPECT_NE(dib.has_value(), !what.empty());
  return dib;
}

TEST(Dib, DepthAndCompression_DecideWhatIsAccepted) {
  const struct {
    uint32_t depth, compression;
    int32_t height;
    bool accepted;
  } cases[] = {
      {1, 0, 2, true},   {4, 0, -2, true}, {8, 0, 2, true},   {16, 0, 2, true},  {24, 0, 2, true},
      {32, 0, 2, true},  {2, 0, 2, false}, {0, 0, 2, false},  {64, 0, 2, false}, {8, 1, 2, true},
      {8, 1, -2, false}, {4, 2, 2, true},  {4, 1, 2, false},   // run length
      {16, 3, 2, true},  {32, 6, 2, true}, {24, 3, 2, false},  // bit fields
      {0, 4, -2, true},  {0, 5, -2, true}, {0, 7, 2, false},   // JPEG, PNG
      {32, 0, 0, false},
  };
  for (const auto& c : cases) {
    const auto info = Info(3, c.height, c.depth, c.compression, 0, {0xFF0000, 0xFF00, 0xFF});
    const auto masks16 = Info(3, c.height, c.depth, c.compression, 0, {0xF800, 0x7E0, 0x1F});
    EXPECT_EQ(Parse(c.depth == 16 ? masks16 : info, 1000).has_value(), c.accepted)
        << c.depth << " " << c.compression << " " << c.height;
  }
}

TEST(Dib, Bits_MustHoldEveryRow) {
  // 3 pixels of 24 bits: rows of 12 bytes, of which 9 are pixels.
  EXPECT_TRUE(Parse(Info(3, 2, 24, 0), 24));
  EXPECT_TRUE(Parse(Info(3, 2, 24, 0), 21));
  EXPECT_FALSE(Parse(Info(3, 2, 24, 0), 20));
  EXPECT_FALSE(Parse(Info(65536, 65536, 32, 0), 1 << 16));
  EXPECT_FALSE(Parse(Info(INT32_MAX, INT32_MIN, 32, 0), 1 << 16));
  EXPECT_FALSE(Parse(Info(65536, 65536, 8, 1), 100));  // run length, 4 billion pixels
  const auto rows = Parse(Info(3, 1000, 24, 0), 24, DibColors::kRgb, 2);
  ASSERT_TRUE(rows);
  EXPECT_EQ(rows->height, 2);
}

TEST(Dib, ColourTable_IsReadAsFarAsItGoes) {
  using Colors = std::vector<uint32_t>;
  const struct {
    DibColors colours;
    uint32_t depth, used;
    Colors table;
    Colors palette;
  } cases[] = {
      {DibColors::kRgb, 1, 0, {0x11FF0000, 0x2200FF00}, {0xFF0000, 0x00FF00}},
      {DibColors::kRgb, 8, 0, {1, 2, 3}, {1, 2, 3}},  // shorter than it should be
      {DibColors::kRgb, 8, 2, {1, 2, 3}, {1, 2}},
      {DibColors::kRgb, 1, 0xFFFFFFFF, {1, 2, 3}, {1, 2}},  // more than the depth takes
      {DibColors::kPaletteEntries, 4, 3, {1 | 2 << 16, 9}, {0x0B0B0B, 0x0C0C0C, 0}},
      {DibColors::kNone, 8, 0, {}, {0x0A0A0A, 0x0B0B0B, 0x0C0C0C}},
  };
  for (const auto& c : cases) {
    const auto dib = Parse(Info(1, 1, c.depth, 0, c.used, c.table), 4, c.colours);
    ASSERT_TRUE(dib);
    EXPECT_EQ(dib->palette, c.palette);
  }
}

TEST(Dib, CoreHeader_HasTriplesOfColour) {
  std::vector<std::byte> info = Pack({12, 5 | 2 << 16, 1 | 1 << 16});
  for (int part = 1; part <= 6; ++part) info.push_back(static_cast<std::byte>(part));
  const auto dib = Parse(info, 8);
  ASSERT_TRUE(dib);
  EXPECT_EQ(dib->width, 5);
  EXPECT_EQ(dib->height, 2);
  EXPECT_EQ(dib->palette, (std::vector<uint32_t>{0x030201, 0x060504}));
}

TEST(Dib, Masks_AreRunsOfBits) {
  using Masks = std::vector<uint32_t>;
  const Masks accepted[] = {{0xFF0000, 0xFF00, 0xFF}, {0xFFE0, 0xFF0000, 0xFF}};  // may share bits
  const Masks refused[] = {{0, 0, 0}, {0xF0F, 0xF0, 0}, {0xFF0000, 0xFF00}};      // too short
  for (const Masks& m : accepted) EXPECT_TRUE(Parse(Info(1, 1, 32, 3, 0, m), 4)) << m[0];
  for (const Masks& m : refused) EXPECT_FALSE(Parse(Info(1, 1, 32, 3, 0, m), 4)) << m[0];
}

TEST(Dib, EveryTruncatedHeader_IsRefused) {
  const auto whole = Info(1, 1, 24, 0);
  for (size_t size = 0; size < whole.size(); ++size) {
    const auto block = std::make_unique<std::byte[]>(size);
    std::memcpy(block.get(), whole.data(), size);
    std::string what;
    EXPECT_FALSE(ParseDib(Bytes(block.get(), size), whole, DibColors::kRgb, 0, {}, what)) << size;
  }
}

}  // namespace
}  // namespace quillo::host::emf
