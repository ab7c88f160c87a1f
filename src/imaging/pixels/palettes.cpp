#include "imaging/pixels/palettes.h"

#include <algorithm>
#include <array>
#include <limits>

namespace quillo::imaging {
namespace {

constexpr PaletteEntry Rgb(uint32_t colour) {
  return {static_cast<uint8_t>(colour), static_cast<uint8_t>(colour >> 8),
          static_cast<uint8_t>(colour >> 16), 0};
}

// Levels of a channel that has 1, 2 or 3 bits of the index.
constexpr std::array<uint8_t, 2> kTwoLevels = {0x00, 0xFF};
constexpr std::array<uint8_t, 4> kFourLevels = {0x00, 0x55, 0xAA, 0xFF};
constexpr std::array<uint8_t, 8> kEightLevels = {0x00, 0x24, 0x49, 0x6D, 0x92, 0xB6, 0xDB, 0xFF};

constexpr std::array<uint32_t, 16> kSixteenColours = {
    0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080, 0x808080,
    0xC0C0C0, 0xFF0000, 0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};

/// Forms the index with red in the high bits and blue in the low bits.
void FillCube(std::span<PaletteEntry> palette, std::span<const uint8_t> red,
              std::span<const uint8_t> green, std::span<const uint8_t> blue) {
  size_t index = 0;
  for (const uint8_t r : red) {
    for (const uint8_t g : green) {
      for (const uint8_t b : blue) palette[index++] = {b, g, r, 0};
    }
  }
}

/// Compatibility: the first two entries are those of the 2-colour palette, so black comes twice.
/// Kept for pages with 4-colour bitmaps that have no palette.
void FillFourColours(std::span<PaletteEntry> palette) {
  constexpr std::array<uint32_t, 4> kFourColours = {0x000000, 0xFFFFFF, 0x000000, 0x555555};
  std::ranges::transform(kFourColours, palette.begin(), Rgb);
}

}  // namespace

bool FillDefaultPalette(std::span<PaletteEntry> palette) {
  switch (palette.size()) {
    case 2:
      palette[0] = Rgb(0x000000);
      palette[1] = Rgb(0xFFFFFF);
      return true;
    case 4:
      FillFourColours(palette);
      return true;
    case 8:
      FillCube(palette, kTwoLevels, kTwoLevels, kTwoLevels);
      return true;
    case 16:
      std::ranges::transform(kSixteenColours, palette.begin(), Rgb);
      return true;
    case 32:
      FillCube(palette, kFourLevels, kFourLevels, kTwoLevels);
      return true;
    case 64:
      FillCube(palette, kFourLevels, kFourLevels, kFourLevels);
      return true;
    case 128:
      FillCube(palette, kFourLevels, kEightLevels, kFourLevels);
      return true;
    case 256:
      FillCube(palette, kEightLevels, kEightLevels, kFourLevels);
      return true;
    default:
      return false;
  }
}

void FillGreyRamp(std::span<PaletteEntry> palette) {
  const size_t last = palette.size() > 1 ? palette.size() - 1 : 1;
  for (size_t i = 0; i < palette.size(); ++i) {
    const auto level = static_cast<uint8_t>(i * 255 / last);
    palette[i] = {level, level, level, 0};
  }
}

void FillColourCube(std::span<PaletteEntry, 256> palette) {
  constexpr std::array<uint8_t, 6> kSixLevels = {0x00, 0x33, 0x66, 0x99, 0xCC, 0xFF};
  std::ranges::fill(palette, PaletteEntry{});
  FillCube(palette, kSixLevels, kSixLevels, kSixLevels);
}

bool IsDefaultPalette(std::span<const PaletteEntry> palette, uint32_t colours) {
  std::array<PaletteEntry, 256> fixed;
  const auto in_use = std::span(fixed).first(std::min<size_t>(colours, fixed.size()));
  return FillDefaultPalette(in_use) && std::ranges::equal(palette, in_use);
}

TwoColours TestTwoColours(std::span<const PaletteEntry> palette) {
  if (palette.size() < 2) return TwoColours::kOther;
  const PaletteEntry black = Rgb(0x000000);
  const PaletteEntry white = Rgb(0xFFFFFF);
  if (palette[0] == black && palette[1] == white) return TwoColours::kBlackOnWhite;
  if (palette[0] == white && palette[1] == black) return TwoColours::kWhiteOnBlack;
  return TwoColours::kOther;
}

uint32_t NearestEntry(std::span<const PaletteEntry> palette, PaletteEntry colour) {
  uint32_t best = 0;
  int best_distance = std::numeric_limits<int>::max();
  for (size_t i = 0; i < palette.size(); ++i) {
    const int red = palette[i].red - colour.red;
    const int green = palette[i].green - colour.green;
    const int blue = palette[i].blue - colour.blue;
    const int distance = red * red + green * green + blue * blue;
    if (distance < best_distance) {
      best_distance = distance;
      best = static_cast<uint32_t>(i);
    }
  }
  return best;
}

}  // namespace quillo::imaging
