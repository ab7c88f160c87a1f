#pragma once

#include <cstdint>

// Sizes and margins of a sheet in the units that the device asks for. Arithmetic on outside numbers
// never traps: products wrap at 32 bits, a quotient by zero is zero.

namespace quillo {

/// An exact length: numerator / denominator, in the unit that a size class names.
struct Fraction {
  int32_t numerator;
  int32_t denominator;
};

/// A size in whole units.
struct Extent {
  int32_t width;
  int32_t height;
  friend bool operator==(const Extent&, const Extent&) = default;
};

/// The unprintable edges of a sheet in whole units.
struct Margins {
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
  friend bool operator==(const Margins&, const Margins&) = default;
};

/// The unit of a looked-up paper size.
enum SizeClass : uint32_t {
  kSizeInches = 0,
  kSizeTenthsOfInch = 1,  // custom papers of the first kind
  kSizeMillimetres = 2,
  kSizeTenthsOfMillimetre = 3,
};

/// The unit that a size or margin is asked for in.
enum class PaperUnit : uint32_t { kDevicePixels = 0, kMillimetres = 1, kTenthsOfMillimetre = 2 };

/// The unit in which a device mode stores its margins.
enum MarginUnit : uint32_t { kMarginMillimetres = 0, kMarginInches = 1 };

/// Converts a length of a size class into a target unit, truncating towards zero. `resolution` is
/// in dots per inch and counts for device pixels only. An unknown class or unit gives 0.
int32_t ConvertLength(Fraction length, uint32_t size_class, uint32_t target_unit,
                      int32_t resolution);

/// Converts a margin of `value` / `divisor` in the stored `unit` (a MarginUnit) into a target unit,
/// in single precision. Pixels are rounded to the nearest, millimetres and tenths truncated; what
/// does not fit saturates. `resolution` is in dots per inch.
///
/// A margin stored in millimetres ignores its divisor when millimetres are asked for: meant so.
int32_t ConvertMargin(float value, float divisor, uint32_t unit, PaperUnit target_unit,
                      int32_t resolution);

/// The sheet less its margins; a side whose margins exceed it has no size.
Extent SubtractMargins(Extent sheet, const Margins& margins);

}  // namespace quillo
