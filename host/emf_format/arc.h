#pragma once

#include <vector>

#include "host/emf_format/geometry.h"

namespace quillo::host::emf {

/// The box of a shape in logical units. Both edges of each axis belong to the shape.
struct Box {
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;

  /// Without mirroring.
  static Box Of(const RectL& rect);
  /// Smaller by `distance` on each side, but never inside out.
  Box Inset(double distance) const;

  double CentreX() const { return (left + right) / 2; }
  double CentreY() const { return (top + bottom) / 2; }
  double Width() const { return right - left; }
  double Height() const { return bottom - top; }
};

/// Part of the ellipse in a box, in radians of the ellipse's parameter t: the point at t is centre
/// + (a cos t, b sin t). Positive sweeps turn from the x axis towards the y axis, which is
/// clockwise where y points downwards.
struct Arc {
  double start = 0;
  double sweep = 0;
};

/// The arc between the directions from the box's centre to two points; the whole ellipse if both
/// are the same.
Arc ArcBetween(const Box& box, PointL start, PointL end, bool clockwise);

/// The arc as Bézier curves: its start point, then three points for each curve of at most a
/// quarter.
std::vector<PointD> ArcCurves(const Box& box, const Arc& arc);

}  // namespace quillo::host::emf
