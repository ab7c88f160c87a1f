#pragma once

#include <cstdint>

namespace quillo::records {

/// 28.4 fixed point to device pixels: nearest pixel, halves towards positive infinity.
constexpr int32_t FixToPixel(int32_t fix) { return ((fix >> 3) + 1) >> 1; }

/// Exchanges byte 0 and byte 2: device colours arrive as 0x00RRGGBB, COLORREF is 0x00BBGGRR.
constexpr uint32_t SwapRedBlue(uint32_t colour) {
  return (colour & 0xFF00FF00u) | ((colour & 0xFFu) << 16) | ((colour >> 16) & 0xFFu);
}

/// Truncates towards zero; values outside i32 (and NaN) give the nearest limit (and 0).
constexpr int32_t TruncateToInt(float value) {
  if (!(value == value)) return 0;
  if (value >= 2147483648.0f) return INT32_MAX;
  if (value < -2147483648.0f) return INT32_MIN;
  return static_cast<int32_t>(value);
}

}  // namespace quillo::records
