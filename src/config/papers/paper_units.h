#pragma once

#include <cstdint>

#include "config/device_mode/private_part.h"

// Sizes and margins of a sheet in the units that the device asks for. Nothing fails: arithmetic on
// outside numbers wraps at 32 bits, and a quotient by zero is zero.

namespace quillo {

/// An exact length: numerator / denominator, in the unit that a size class names.
struct Fraction {
  int32_t numerator;
  int32_t denominator;
};

/// The unit in which a paper's size is known.
enum SizeClass : uint32_t {
  kSizeInches = 0,
  kSizeTenthsOfInch = 1,  // custom papers of the first kind
  kSizeMillimetres = 2,
  kSizeTenthsOfMillimetre = 3,
};

/// An exact size.
struct ExactSize {
  Fraction width;
  Fraction height;
  SizeClass unit_class;
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

/// The unit that a size or margin is asked for in.
enum class PaperUnit : uint32_t { kDevicePixels = 0, kMillimetres = 1, kTenthsOfMillimetre = 2 };

/// Converts a length of a size class into a target unit, truncating towards zero. `resolution` is
/// in dots per inch and counts for device pixels only. 0 for an unknown class or unit.
int32_t ConvertLength(Fraction length, uint32_t size_class, uint32_t target_unit,
                      int32_t resolution);

/// Converts a margin stored in `unit` (a MarginUnit) into a target unit, in single precision.
/// Pixels are rounded to the nearest, millimetres and tenths truncated; what does not fit
/// saturates. `resolution` is in dots per inch.
int32_t ConvertMargin(StoredMargin margin, uint32_t unit, PaperUnit target_unit,
                      int32_t resolution);

/// The sheet less its margins; 0 for a side whose margins exceed it.
Extent SubtractMargins(Extent sheet, const Margins& margins);

}  // namespace quillo
