#pragma once

#include "base/ddi.h"

#include <algorithm>
#include <cmath>

#include "host/emf_format/transform.h"

namespace quillo::host::emf {

/// The whole pixel position nearest to `value`, kept within what 28.4 fixed point can hold.
inline LONG ToPixel(double value) {
  constexpr double kFarthest = (1 << 27) - 1;
  if (!(std::fabs(value) <= kFarthest)) return static_cast<LONG>(std::copysign(kFarthest, value));
  return static_cast<LONG>(std::floor(value + 0.5));
}

/// A rectangle of a map that keeps axes, in whole pixels and the right way round.
inline RECTL ToPixelRect(const Transform& map, double left, double top, double right,
                         double bottom) {
  const PointD a = map.Apply(left, top);
  const PointD b = map.Apply(right, bottom);
  return {ToPixel(std::min(a.x, b.x)), ToPixel(std::min(a.y, b.y)), ToPixel(std::max(a.x, b.x)),
          ToPixel(std::max(a.y, b.y))};
}

}  // namespace quillo::host::emf
