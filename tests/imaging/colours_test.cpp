#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "imaging/painting/dither.h"
#include "imaging/painting/paint_method.h"
#include "imaging/pixels/packed_rows.h"
#include "imaging/storage/storage_choice.h"
#include "support/case_table.h"
#include "support/digest.h"
#include "support/line.h"

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

TEST(Palettes, Entries_HaveTheirColours) {
  test::CheckCases("imaging/palettes.txt", [](const auto& fields) {
    size_t colours = 0, index = 0;
    test::Scan(fields[0], colours, index);
    const auto palette = Fixed(colours);
    EXPECT_TRUE(IsDefaultPalette(palette, static_cast<uint32_t>(colours)));
    const PaletteEntry& e = palette.at(index);
    return test::Line(int{e.red}, ' ', int{e.green}, ' ', int{e.blue});
  });
  std::vector<PaletteEntry> other(3);
  EXPECT_FALSE(FillDefaultPalette(other));
  PaletteEntry cube[256];
  FillColourCube(cube);
  const std::pair<size_t, uint32_t> levels[] = {
      {121, 0x996633}, {144, 0xCC0000}, {215, 0xFFFFFF}, {216, 0}, {255, 0}};
  for (const auto& [index, colour] : levels) EXPECT_EQ(cube[index], Rgb(colour)) << index;
}

TEST(ChoosePaintMethod, EveryRule_GivesItsMethod) {
  const std::map<std::string, std::vector<PaletteEntry>> palettes = {
      {"black-white", {Rgb(0), Rgb(0xFFFFFF)}},
      {"white-black", {Rgb(0xFFFFFF), Rgb(0)}},
      {"red-white", {Rgb(0xFF0000), Rgb(0xFFFFFF)}},
      {"fixed16", Fixed(16)},
      {"fixed256", Fixed(256)},
      {"none", {}}};
  test::CheckCases("imaging/paint_methods.txt", [&palettes](const auto& fields) {
    uint32_t bits = 0, order = 0, depth = 0, mode = 0;
    std::string palette;
    test::Scan(fields[0], bits, order, palette, depth, mode);
    const RowFormat bitmap{bits, order, palettes.at(palette)};
    return std::to_string(static_cast<int>(ChoosePaintMethod(bitmap, depth, kOrderColour, mode)));
  });
  EXPECT_EQ(ChoosePaintMethod({24, kOrderRedFirst, {}}, 24, kOrderRedFirst, kModeKeepRedFirst),
            PaintMethod::kAsIs);
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
  std::vector<std::byte> work(DitherWorkSize(kWidth)), row(kWidth * 3), indexes(kWidth);
  ErrorDiffuser diffuser(palette, kWidth, work);
  for (size_t y = 0; y < std::size(kRows); ++y) {
    for (size_t i = 0; i < row.size(); ++i) {
      row[i] = static_cast<std::byte>(i / 3 * 37 + y * 91 + i % 3 * 53);
    }
    diffuser.Row(row.data(), 8, indexes.data());
    EXPECT_EQ(indexes, test::HexBytes(kRows[y])) << y;
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
    // Of a damaged row nothing after its end is read.
    for (size_t cut = 0; cut < size; cut += 7) {
      UnpackRow(std::vector(packed.begin(), packed.begin() + static_cast<ptrdiff_t>(cut)),
                unpacked);
    }
  }
}

TEST(StorageChoice, LargeBitmaps_GoToDiskWhenMemoryIsShort) {
  test::CheckCases("imaging/storage_choices.txt", [](const auto& fields) {
    uint64_t size = 0;
    MemoryLimits limits{};
    test::Scan(fields[0], size, limits.reserve, limits.maximum);
    return std::to_string(ChooseForLarge(
        1, size, limits, {.total = 1000, .free_physical = 300, .free_page_file = 200}));
  });
  EXPECT_EQ(KeepSmallInMemory(4), 1u);
  EXPECT_EQ(KeepSmallInMemory(8), 8u);
  EXPECT_EQ(SmallSize({0, 0, 0}), 16u << 20);
}

}  // namespace
}  // namespace quillo::imaging
