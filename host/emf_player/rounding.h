#pragma once

#include "base/ddi.h"

#include <algorithm>
#include <cmath>

#include "host/emf_format/transform.h"

namespace quillo::host::emf {

/// The nearest whole pixel, clamped to the range of 28.4 fixed point.
inline LONG ToPixel(double value) {
  constexpr double kFarthest = (1 << 27) - 1;
  if (!(std::fabs(value) <= kFarthest)) return static_cast<LONG>(std::copysign(kFarthest, value));
  return static_cast<LONG>(std::floor(value + 0.5));
}

/// A mapped rectangle in whole pixels, without mirroring. The map keeps axes.
inline RECTL ToPixelRect(const Transform& map, double left, double top, double right,
                         double bottom) {
  const PointD a = map.Apply(left, top);
  const PointD b = map.Apply(right, bottom);
  return {ToPixel(std::min(a.x, b.x)), ToPixel(std::min(a.y, b.y)), ToPixel(std::max(a.x, b.x)),
          ToPixel(std::max(a.y, b.y))};
}

}  // namespace quillo::host::emf
