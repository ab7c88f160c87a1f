#pragma once

#include <vector>

#include "host/emf_format/geometry.h"

namespace quillo::host::emf {

/// The box of a shape as records hold it: both edges belong to the shape. Logical units.
struct Box {
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;

  /// The right way round.
  static Box Of(const RectL& rect);
  /// Smaller by `distance` on each side, down to nothing.
  Box Inset(double distance) const;

  double CenterX() const { return (left + right) / 2; }
  double CenterY() const { return (top + bottom) / 2; }
  double Width() const { return right - left; }
  double Height() const { return bottom - top; }
};

/// Part of the ellipse in a box: from an angle over a sweep, radians of the ellipse's parameter
/// (the point at t is centre + (a cos t, b sin t)); positive turns from the x axis towards the y
/// axis, clockwise where y points downwards.
struct Arc {
  double start = 0;
  double sweep = 0;
};

/// The arc between the directions from the box's centre to two points. From a point to itself it is
/// the whole ellipse.
Arc ArcBetween(const Box& box, PointL start, PointL end, bool clockwise);

/// The arc as Béziers: its start point, then three points for each curve of at most a quarter turn.
std::vector<PointD> ArcCurves(const Box& box, const Arc& arc);

}  // namespace quillo::host::emf
