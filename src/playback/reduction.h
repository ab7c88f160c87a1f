#pragma once

#include <cstdint>

namespace quillo {

/// Largest bitmap that is drawn unreduced, in pixels.
struct BitmapLimits {
  int32_t width;
  int32_t height;
};

/// Limits of a job: the long side of an A3 sheet at 600 dpi, whichever way it lies. A bitmap of
/// this size has a pixel for each of the device, and takes 376 MiB at 32 bits per pixel.
inline constexpr int32_t kLongestSide = (420 * 600 * 10 + 253) / 254;
inline constexpr BitmapLimits kDefaultBitmapLimits = {kLongestSide, kLongestSide};

/// A source bitmap's size and coordinates are multiplied by numerator / denominator.
struct ReductionScale {
  int32_t numerator = 1;
  int32_t denominator = 1;
  bool operator==(const ReductionScale&) const = default;
};

/// The scale that brings a bitmap (sides of at least 1) to the limits.
/// Compatibility: the ratios of limit and side are truncated to whole numbers before they are
/// compared. A side over its limit has ratio 0, and when both are over, the width decides, so that
/// the height may stay above its limit; kept for pages.
constexpr ReductionScale FindReduction(int32_t width, int32_t height, BitmapLimits limits) {
  if (width <= limits.width && height <= limits.height) return {};
  const int32_t ratio_x = limits.width / width;
  const int32_t ratio_y = limits.height / height;
  if (ratio_x > ratio_y) return {limits.height, height};
  return {limits.width, width};
}

}  // namespace quillo
