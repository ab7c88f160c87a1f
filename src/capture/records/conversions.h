#pragma once

#include <cstdint>

namespace quillo::records {

/// 28.4 fixed point to device pixels: nearest pixel, halves towards positive infinity.
constexpr int32_t FixToPixel(int32_t fix) { return ((fix >> 3) + 1) >> 1; }

/// Exchanges byte 0 and byte 2: device colours arrive as 0x00RRGGBB, COLORREF is 0x00BBGGRR.
constexpr uint32_t SwapRedBlue(uint32_t colour) {
  return (colour & 0xFF00FF00u) | ((colour & 0xFFu) << 16) | ((colour >> 16) & 0xFFu);
}

}  // namespace quillo::records
