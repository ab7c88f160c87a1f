#include "config/papers/paper_units.h"

#include <algorithm>
#include <iterator>

#include "base/arithmetic.h"

namespace quillo {

namespace {

/// Truncating quotient; 0 for a divisor of 0, and the one quotient that does not fit wraps.
constexpr int32_t SafeDivide(int32_t a, int32_t b) {
  if (b == 0) return 0;
  if (b == -1) return WrappingMultiply(a, -1);
  return a / b;
}

struct Scale {
  int32_t multiply;
  int32_t divide;
};

// By size class (rows) and target unit; the first column is multiplied by the resolution as well.
constexpr Scale kScales[][3] = {
    {{1, 1}, {254, 10}, {254, 1}},     // inches
    {{1, 10}, {254, 100}, {254, 10}},  // tenths of an inch
    {{10, 254}, {1, 1}, {10, 1}},      // millimetres
    {{1, 254}, {1, 10}, {1, 1}},       // tenths of a millimetre
};

int32_t PrintableLength(int32_t sheet, int32_t near, int32_t far) {
  const int64_t printable = int64_t{sheet} - (int64_t{near} + far);
  return static_cast<int32_t>(std::clamp<int64_t>(printable, 0, INT32_MAX));
}

}  // namespace

int32_t ConvertLength(Fraction length, uint32_t size_class, uint32_t target_unit,
                      int32_t resolution) {
  if (size_class >= std::size(kScales) || target_unit >= std::size(kScales[0])) return 0;
  const Scale scale = kScales[size_class][target_unit];
  int32_t numerator = length.numerator;
  if (target_unit == static_cast<uint32_t>(PaperUnit::kDevicePixels)) {
    numerator = WrappingMultiply(numerator, resolution);
  }
  return SafeDivide(WrappingMultiply(numerator, scale.multiply),
                    WrappingMultiply(length.denominator, scale.divide));
}

int32_t ConvertMargin(StoredMargin margin, uint32_t unit, PaperUnit target_unit,
                      int32_t resolution) {
  const auto [value, divisor] = margin;
  switch (target_unit) {
    case PaperUnit::kDevicePixels: {
      float pixels = value / (divisor / static_cast<float>(resolution));
      if (unit == kMarginMillimetres) pixels /= 25.4f;
      return TruncateToInt(pixels + 0.5f);
    }
    case PaperUnit::kMillimetres:
      // Compatibility: from millimetres to millimetres the divisor is ignored. Kept for the stored
      // settings of installed printers.
      return TruncateToInt(unit == kMarginInches ? value / divisor * 25.4f : value);
    case PaperUnit::kTenthsOfMillimetre:
      return TruncateToInt(value / divisor * (unit == kMarginInches ? 254.0f : 10.0f));
  }
  return 0;
}

Extent SubtractMargins(Extent sheet, const Margins& margins) {
  return {PrintableLength(sheet.width, margins.left, margins.right),
          PrintableLength(sheet.height, margins.top, margins.bottom)};
}

}  // namespace quillo
