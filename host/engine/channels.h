#pragma once

#include <bit>
#include <cstdint>

#include "host/engine/drawing.h"

namespace quillo::host {

/// Where the channels of a 16- or 32-bit pixel lie.
struct Masks {
  uint32_t red, green, blue;
  bool operator==(const Masks&) const = default;
};

inline constexpr Masks kDefault16{0x7C00, 0x03E0, 0x001F};
inline constexpr Masks kDefault32{0xFF0000, 0x00FF00, 0x0000FF};

/// The effective masks. A picture of 24 bits has those of 32 bits; one with a palette has none.
inline Masks MasksOf(const BitmapSource& picture) {
  if (picture.bits_per_pixel <= 8) return {};
  const Masks own{picture.red_mask, picture.green_mask, picture.blue_mask};
  if (picture.bits_per_pixel != 24 && own != Masks{}) return own;
  return picture.bits_per_pixel == 16 ? kDefault16 : kDefault32;
}

/// One channel scaled to 0 to 255; 0 for an empty mask.
inline uint32_t Channel(uint32_t pixel, uint32_t mask) {
  if (mask == 0) return 0;
  const int shift = std::countr_zero(mask);
  return static_cast<uint32_t>(((pixel & mask) >> shift) * uint64_t{255} / (mask >> shift));
}

/// 0x00RRGGBB. A pixel that is in this order already also keeps its highest byte.
inline uint32_t ColourOf(uint32_t pixel, const Masks& masks) {
  if (masks == kDefault32) return pixel;
  return Channel(pixel, masks.red) << 16 | Channel(pixel, masks.green) << 8 |
         Channel(pixel, masks.blue);
}

}  // namespace quillo::host
