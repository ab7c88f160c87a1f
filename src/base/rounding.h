#pragma once

#include <cstdint>

namespace quillo {

/// Truncates towards zero; values outside i32 (and NaN) give the nearest limit (and 0).
constexpr int32_t TruncateToInt(float value) {
  if (!(value == value)) return 0;
  if (value >= 2147483648.0f) return INT32_MAX;
  if (value < -2147483648.0f) return INT32_MIN;
  return static_cast<int32_t>(value);
}

}  // namespace quillo
