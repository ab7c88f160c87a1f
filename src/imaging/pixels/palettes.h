#pragma once

#include <cstdint>
#include <span>

namespace quillo::imaging {

/// A colour table entry, laid out as the platform's RGBQUAD.
struct PaletteEntry {
  uint8_t blue;
  uint8_t green;
  uint8_t red;
  uint8_t reserved;

  friend constexpr bool operator==(PaletteEntry a, PaletteEntry b) {
    return a.blue == b.blue && a.green == b.green && a.red == b.red;
  }
};

/// Fills `palette` with the kernel's fixed colours for its length (2, 4, 8, ... 256); false, and
/// nothing written, for any other length.
bool FillDefaultPalette(std::span<PaletteEntry> palette);

/// Sets entry i to the grey level i * 255 / (length - 1); a single entry is black.
void FillGreyRamp(std::span<PaletteEntry> palette);

/// The 6 x 6 x 6 colour cube in entries 0 to 215 (red * 36 + green * 6 + blue), black after it.
void FillColourCube(std::span<PaletteEntry, 256> palette);

/// Whether the palette equals the kernel's fixed palette of `colours` entries.
bool IsDefaultPalette(std::span<const PaletteEntry> palette, uint32_t colours);

/// What the two colours of a 1-bit bitmap are.
enum class TwoColours { kOther = 0, kBlackOnWhite = 1, kWhiteOnBlack = 2 };

/// kBlackOnWhite when entry 0 is black and entry 1 white, kWhiteOnBlack the other way round.
TwoColours TestTwoColours(std::span<const PaletteEntry> palette);

/// Index of the entry nearest by squared distance in RGB, the first of equals. `palette` is not
/// empty.
uint32_t NearestEntry(std::span<const PaletteEntry> palette, PaletteEntry colour);

}  // namespace quillo::imaging
