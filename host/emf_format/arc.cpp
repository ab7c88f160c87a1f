#include "host/emf_format/arc.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quillo::host::emf {

using std::numbers::pi;

Box Box::Of(const RectL& rect) {
  return {static_cast<double>(std::min(rect.left, rect.right)),
          static_cast<double>(std::min(rect.top, rect.bottom)),
          static_cast<double>(std::max(rect.left, rect.right)),
          static_cast<double>(std::max(rect.top, rect.bottom))};
}

Box Box::Inset(double distance) const {
  const double x = std::min(distance, Width() / 2);
  const double y = std::min(distance, Height() / 2);
  return {left + x, top + y, right - x, bottom - y};
}

Arc ArcBetween(const Box& box, PointL start, PointL end, bool clockwise) {
  const auto angle = [&box](PointL point) {
    // Stretching the box to a square turns the direction into the ellipse's parameter.
    const double x = (point.x - box.CentreX()) * box.Height();
    const double y = (point.y - box.CentreY()) * box.Width();
    return std::atan2(y, x);
  };
  const double from = angle(start);
  double sweep = angle(end) - from;
  if (clockwise) {
    if (sweep <= 0) sweep += 2 * pi;
  } else {
    if (sweep >= 0) sweep -= 2 * pi;
  }
  return {from, sweep};
}

std::vector<PointD> ArcCurves(const Box& box, const Arc& arc) {
  const double a = box.Width() / 2;
  const double b = box.Height() / 2;
  const auto at = [&](double x, double y) {
    return PointD{box.CentreX() + a * x, box.CentreY() + b * y};
  };
  const int pieces =
      std::max(1, static_cast<int>(std::ceil(std::fabs(arc.sweep) / (pi / 2) - 1e-9)));
  const double step = arc.sweep / pieces;
  // The distance of the control points with which the curve meets the arc in its middle.
  const double k = 4.0 / 3 * std::tan(step / 4);

  std::vector<PointD> points;
  points.reserve(1 + 3 * static_cast<size_t>(pieces));
  points.push_back(at(std::cos(arc.start), std::sin(arc.start)));
  for (int i = 0; i < pieces; ++i) {
    const double t0 = arc.start + i * step;
    const double t1 = t0 + step;
    const double c0 = std::cos(t0), s0 = std::sin(t0);
    const double c1 = std::cos(t1), s1 = std::sin(t1);
    points.push_back(at(c0 - k * s0, s0 + k * c0));
    points.push_back(at(c1 + k * s1, s1 - k * c1));
    points.push_back(at(c1, s1));
  }
  return points;
}

}  // namespace quillo::host::emf
