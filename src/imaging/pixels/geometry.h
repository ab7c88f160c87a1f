#pragma once

#include <cstdint>
#include <limits>
#include <optional>

#include "base/dib.h"

namespace quillo::imaging {

/// Size of a bitmap and of its rows.
struct Geometry {
  uint32_t width;           // pixels
  uint32_t height;          // rows
  uint32_t bits_per_pixel;  //
  uint32_t bytes_per_line;  // a multiple of 4
  uint64_t data_size;       // bytes_per_line * height
};

/// Whether bitmaps of this depth exist.
constexpr bool IsSupportedDepth(uint32_t bits_per_pixel) {
  switch (bits_per_pixel) {
    case 12:
    case 16:
    case 24:
    case 32:
    case 48:
    case 64:
      return true;
    default:
      return bits_per_pixel >= 1 && bits_per_pixel <= 8;
  }
}

/// Palette entries of a depth of at most 8 bits; 0 above.
constexpr uint32_t PaletteSize(uint32_t bits_per_pixel) {
  return bits_per_pixel <= 8 ? 1u << bits_per_pixel : 0;
}

/// The only place where row and bitmap sizes are computed. Nothing when a row has 4 GiB or more.
constexpr std::optional<Geometry> MakeGeometry(uint32_t width, uint32_t height,
                                               uint32_t bits_per_pixel) {
  const uint64_t bytes = DibStride(width, bits_per_pixel);
  if (bytes > std::numeric_limits<uint32_t>::max()) return std::nullopt;
  return Geometry{width, height, bits_per_pixel, static_cast<uint32_t>(bytes), bytes * height};
}

}  // namespace quillo::imaging
