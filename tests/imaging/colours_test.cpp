#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "imaging/painting/dither.h"
#include "imaging/painting/paint_method.h"
#include "imaging/pixels/packed_rows.h"
#include "imaging/storage/storage_choice.h"

namespace quillo::imaging {
namespace {

PaletteEntry Rgb(uint32_t colour) {
  return {static_cast<uint8_t>(colour), static_cast<uint8_t>(colour >> 8),
          static_cast<uint8_t>(colour >> 16), 0};
}

std::vector<PaletteEntry> Fixed(size_t colours) {
  std::vector<PaletteEntry> palette(colours);
  EXPECT_TRUE(FillDefaultPalette(palette));
  return palette;
}

TEST(Palettes, SampleEntries_HaveTheirColours) {
  struct {
    size_t colours, index;
    uint32_t colour;
  } const cases[] = {{2, 1, 0xFFFFFF},    {4, 1, 0xFFFFFF},     {4, 2, 0x000000},
                     {4, 3, 0x555555},    {8, 5, 0xFF00FF},     {16, 8, 0xC0C0C0},
                     {16, 13, 0xFF00FF},  {32, 9, 0x5500FF},    {64, 27, 0x55AAFF},
                     {128, 37, 0x552455}, {128, 127, 0xFFFFFF}, {256, 198, 0xDB24AA},
                     {256, 41, 0x244955}, {256, 114, 0x6D92AA}, {256, 187, 0xB6DBFF}};
  for (const auto& c : cases) {
    EXPECT_EQ(Fixed(c.colours)[c.index], Rgb(c.colour)) << c.colours << ' ' << c.index;
    EXPECT_TRUE(IsDefaultPalette(Fixed(c.colours), static_cast<uint32_t>(c.colours)));
  }
  for (uint32_t i = 0; i < 16; ++i) {
    const uint32_t level = i < 8 ? 0x80 : 0xFF;
    const auto channel = [i, level](uint32_t bit) { return (i >> bit & 1) * level; };
    if (i == 8) continue;
    EXPECT_EQ(Fixed(16)[i], Rgb(channel(0) << 16 | channel(1) << 8 | channel(2))) << i;
  }
  std::vector<PaletteEntry> other(3);
  EXPECT_FALSE(FillDefaultPalette(other));
  PaletteEntry cube[256];
  FillColourCube(cube);
  const std::pair<size_t, uint32_t> levels[] = {
      {121, 0x996633}, {144, 0xCC0000}, {215, 0xFFFFFF}, {216, 0}, {255, 0}};
  for (const auto& [index, colour] : levels) EXPECT_EQ(cube[index], Rgb(colour)) << index;
}

TEST(ChoosePaintMethod, EveryRule_GivesItsMethod) {
  using Palette = std::vector<PaletteEntry>;
  const Palette kBw = {Rgb(0), Rgb(0xFFFFFF)}, kWb = {Rgb(0xFFFFFF), Rgb(0)},
                kRw = {Rgb(0xFF0000), Rgb(0xFFFFFF)}, kFixed16 = Fixed(16), kFixed256 = Fixed(256),
                kNone;
  const struct {
    uint32_t bits, order;
    const Palette& palette;
    uint32_t depth, mode;
    int method;
  } cases[] = {
      {1, 0, kBw, 24, 0x10, 3},      {1, 0, kWb, 4, 0x10, 4},       {1, 0, kBw, 1, 0x10, 0},
      {1, 0, kRw, 8, 0x98, 2},       {1, 0, kRw, 24, 0x98, 0},      {1, 0, kRw, 8, 0x18, 0},
      {1, 0, kBw, 1, 0x40, 5},       {1, 0, kWb, 24, 0x40, 6},      {1, 0, kBw, 1, 0x50, 5},
      {1, 0, kBw, 8, 0x50, 3},       {1, 0, kRw, 4, 0xC8, 2},       {1, 0, kRw, 24, 0xC8, 0},
      {1, 0, kBw, 8, 0x88, 2},       {1, 0, kBw, 4, 0x88, 0},       {1, 0, kBw, 8, 0x08, 0},
      {2, 0, kBw, 24, 0, 1},         {3, 0, kBw, 4, 0x08, 2},       {5, 0, kBw, 8, 0x08, 1},
      {6, 0, kBw, 8, 0x88, 2},       {7, 0, kBw, 24, 0x88, 1},      {4, 0, kBw, 1, 0, 0},
      {4, 0, kBw, 1, 0x08, 2},       {4, 0, kBw, 8, 0x08, 0},       {4, 0, kBw, 8, 0x88, 2},
      {4, 0, kBw, 24, 0x88, 0},      {4, 0, kBw, 4, 0x08, 2},       {4, 0, kFixed16, 4, 0x08, 0},
      {4, 0, kFixed16, 4, 0x88, 0},  {4, 0, kFixed16, 1, 0x88, 2},  {8, 0, kBw, 4, 0, 0},
      {8, 0, kBw, 4, 0x08, 2},       {8, 0, kBw, 8, 0x08, 0},       {8, 0, kBw, 8, 0x88, 2},
      {8, 0, kFixed256, 8, 0x88, 0}, {8, 0, kFixed256, 4, 0x88, 2}, {12, 2, kNone, 24, 0, 1},
      {16, 2, kNone, 4, 0x08, 2},    {16, 2, kNone, 8, 0x08, 1},    {16, 2, kNone, 8, 0x88, 2},
      {16, 1, kNone, 1, 0x88, 0},    {24, 1, kNone, 24, 0, 0},      {24, 1, kNone, 8, 0x08, 2},
      {24, 0, kNone, 24, 0, 1},      {24, 0, kNone, 24, 0x800, 1},  {24, 5, kNone, 24, 0x800, 1},
      {24, 5, kNone, 8, 0x08, 2},    {32, 1, kNone, 1, 0x88, 0},    {48, 1, kNone, 8, 0, 1},
      {48, 1, kNone, 8, 0x08, 2},    {64, 1, kNone, 24, 0x08, 1},   {1, 0, kNone, 24, 0x40, 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(static_cast<int>(
                  ChoosePaintMethod({c.bits, c.order, c.palette}, c.depth, kOrderColour, c.mode)),
              c.method)
        << c.bits << " bits, depth " << c.depth << ", mode " << std::hex << c.mode;
  }
  EXPECT_EQ(ChoosePaintMethod({24, 0, {}}, 24, kOrderRedFirst, 0x800), PaintMethod::kAsIs);
  const uint32_t depths[][2] = {{1, 1}, {3, 1}, {4, 4}, {7, 4}, {8, 8}, {15, 8}, {16, 24}};
  for (const auto& [bits, depth] : depths) EXPECT_EQ(QuantizeDepth(bits), depth) << bits;
}

/// The indexes were computed apart from the driver, by the weights 7, 3, 5 and 1 of Floyd and
/// Steinberg.
TEST(ErrorDiffuser, ColouredRows_ChooseKnownEntries) {
  constexpr uint32_t kWidth = 16;
  const char* const kRows[] = {
      "648cadd5f63e436888b1d5163e436888", "b1f61a3e47888dd1f61a434788adb1f6",
      "3e43648cadd5f63e436888b1d51a3e43", "68adb1f61a5f4768acb1f61a424788ad",
      "d1fa3a436888b1d5f63e436889b1d51a"};
  const std::vector<PaletteEntry> palette = Fixed(256);
  std::vector<std::byte> work(DitherWorkSize(kWidth));
  ErrorDiffuser diffuser(palette, kWidth, work);
  for (size_t y = 0; y < std::size(kRows); ++y) {
    std::vector<std::byte> row(kWidth * 3), indexes(kWidth);
    for (size_t i = 0; i < row.size(); ++i) {
      row[i] = static_cast<std::byte>(i / 3 * 37 + y * 91 + i % 3 * 53);
    }
    diffuser.Row(row.data(), 8, indexes.data());
    for (size_t x = 0; x < kWidth; ++x) {
      const std::string digits(kRows[y] + 2 * x, 2);
      EXPECT_EQ(static_cast<int>(indexes[x]), std::stoi(digits, nullptr, 16)) << x << ',' << y;
    }
  }
}

TEST(PackRow, AnyRow_UnpacksToItselfWithinTheBound) {
  std::mt19937 random(9);
  for (int round = 0; round < 400; ++round) {
    std::vector<std::byte> row(random() % 700);
    const uint32_t variety = random() % 5;
    for (size_t i = 0; i < row.size(); ++i) {
      const bool repeat = i > 0 && random() % 8 < variety * 2;
      row[i] = repeat ? row[i - 1] : static_cast<std::byte>(random());
    }
    std::vector<std::byte> packed(PackedBound(row.size()));
    const size_t size = PackRow(row, packed);
    ASSERT_LE(size, packed.size());
    packed.resize(size);
    packed.shrink_to_fit();
    std::vector<std::byte> unpacked(row.size());
    UnpackRow(packed, unpacked);
    ASSERT_EQ(unpacked, row);
    // A damaged row ends in zeros and reads nothing behind its end.
    for (size_t cut = 0; cut < size; cut += 7) UnpackRow(Bytes(packed).first(cut), unpacked);
  }
}

TEST(StorageChoice, LargeBitmaps_GoToDiskWhenMemoryIsShort) {
  const MemoryState memory{.total = 1000, .free_physical = 300, .free_page_file = 200};
  struct {
    uint64_t size;
    int64_t reserve, maximum;  // bytes, or percentages below zero
    uint32_t type;
  } const cases[] = {{500, 0, 1000, 1},   {501, 0, 1000, 5}, {401, 100, 1000, 5},
                     {301, -20, 1000, 5}, {1, -90, 1000, 5}, {400, 0, 399, 5},
                     {400, 0, -39, 5},    {400, 0, -40, 1},  {400, INT64_MIN, INT64_MIN, 5}};
  for (const auto& c : cases) {
    EXPECT_EQ(ChooseForLarge(1, c.size, {0, c.reserve, c.maximum}, memory), c.type)
        << c.size << ' ' << c.reserve << ' ' << c.maximum;
  }
  EXPECT_EQ(KeepSmallInMemory(4), 1u);
  EXPECT_EQ(KeepSmallInMemory(8), 8u);
  EXPECT_EQ(SmallSize({0, 0, 0}), 16u << 20);
}

}  // namespace
}  // namespace quillo::imaging
