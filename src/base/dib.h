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

/// Bytes of each row of a DIB: whole words of 32 bits.
constexpr uint64_t DibStride(uint64_t width, uint32_t bits_per_pixel) {
  return (width * bits_per_pixel + 31) / 32 * 4;
}

}  // namespace quillo
