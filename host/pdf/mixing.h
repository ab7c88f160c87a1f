#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Raster operations as PDF can draw them. Colours are 0x00RRGGBB.
namespace quillo::host::pdf {

/// The ternary operation of the same result as a binary one, R2_BLACK (1) to R2_WHITE (16).
uint8_t TernaryOf(uint8_t rop2);

/// "R2_XORPEN"; "SRCINVERT", or "ROP3 0xB8" for an operation without a name.
std::string NameOfRop2(uint8_t rop2);
std::string NameOfRop3(uint8_t rop3);

/// What an operation does where brush and source are known: it leaves the page's bits that are set
/// in `keep`, clears the others, and then inverts those that are set in `flip`.
struct Mixing {
  uint32_t keep = 0;
  uint32_t flip = 0;
};
Mixing MixingOf(uint8_t rop3, uint32_t brush, uint32_t source);

enum class Blend {
  kNormal,  // transparent where the page stays
  kMultiply,
  kScreen,
  kDifference,
};

/// Pictures (or, of one pixel, colours) that are drawn one after the other.
struct Layers {
  struct Layer {
    Blend blend;
    std::vector<uint32_t> pixels;  // 0xAARRGGBB; AA is 0 or 255
  };
  std::vector<Layer> list;
  bool exact = true;  // false: what is drawn is only near to what the operation would make
};

/// The layers with the effect of `mixings`, one for each pixel. Exact where the mixings decide
/// about whole channels, as colours of 0 and 255 do, or the page does not matter.
Layers LayersOf(const std::vector<Mixing>& mixings);

}  // namespace quillo::host::pdf
