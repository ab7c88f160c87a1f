#pragma once

#include <cstdint>

namespace quillo {

/// Whether GDI has DIBs of this many bits per pixel.
constexpr bool IsDibDepth(uint32_t bits_per_pixel) {
  switch (bits_per_pixel) {
    case 1:
    case 4:
    case 8:
    case 16:
    case 24:
    case 32:
      return true;
    default:
      return false;
  }
}

}  // namespace quillo
