#include "host/engine/path.h"

#include <algorithm>
#include <cmath>

namespace quillo::host {
namespace {

/// Largest distance of a chord from its curve, in 28.4 units: 1/8 pixel, less the 1/32 pixel that
/// rounding the chord's ends to the format can add.
constexpr double kFlatness = 1.5;
/// More than any curve within the format needs.
constexpr double kMaxChords = 4096;

double Distance(double x, double y) { return std::hypot(x, y); }

/// Number of equal parameter steps whose chords stay within kFlatness of the cubic: a chord over a
/// step h lies within h*h/8 of the curve's largest second derivative, which for a cubic is at most
/// six times the larger second difference of its control points.
int ChordCount(const POINTFIX p[4]) {
  const auto second_difference = [&](int i) {
    return Distance(p[i].x - 2.0 * p[i + 1].x + p[i + 2].x, p[i].y - 2.0 * p[i + 1].y + p[i + 2].y);
  };
  const double bend = std::max(second_difference(0), second_difference(1));
  return static_cast<int>(
      std::clamp(std::ceil(std::sqrt(6.0 / 8.0 * bend / kFlatness)), 1.0, kMaxChords));
}

void AppendChords(const POINTFIX p[4], Path& flat) {
  const int count = ChordCount(p);
  for (int i = 1; i < count; ++i) {
    const double t = static_cast<double>(i) / count, s = 1 - t;
    const double b0 = s * s * s, b1 = 3 * s * s * t, b2 = 3 * s * t * t, b3 = t * t * t;
    flat.LineTo(
        {static_cast<FIX>(std::lround(b0 * p[0].x + b1 * p[1].x + b2 * p[2].x + b3 * p[3].x)),
         static_cast<FIX>(std::lround(b0 * p[0].y + b1 * p[1].y + b2 * p[2].y + b3 * p[3].y))});
  }
  flat.LineTo(p[3]);
}

}  // namespace

FIX ToFix(double pixels) {
  // A margin of one pixel keeps the driver's rounding and widening inside the format.
  constexpr double kMax = INT32_MAX - 16;
  if (std::isnan(pixels)) return 0;
  return static_cast<FIX>(std::lround(std::clamp(pixels * 16, -kMax, kMax)));
}

POINTFIX ToPointFix(double x, double y) { return {ToFix(x), ToFix(y)}; }

Figure& Path::OpenFigure() {
  if (!open_) {
    figures_.push_back({{start_}, {}, false});
    open_ = true;
  }
  return figures_.back();
}

void Path::MoveTo(POINTFIX point) {
  start_ = point;
  open_ = false;
}

void Path::LineTo(POINTFIX point) {
  Figure& figure = OpenFigure();
  figure.points.push_back(point);
  figure.verbs.push_back(Figure::Verb::kLine);
}

void Path::BezierTo(POINTFIX control1, POINTFIX control2, POINTFIX end) {
  Figure& figure = OpenFigure();
  figure.points.insert(figure.points.end(), {control1, control2, end});
  figure.verbs.push_back(Figure::Verb::kBezier);
}

void Path::CloseFigure() {
  if (!open_) return;
  figures_.back().closed = true;
  open_ = false;
  start_ = figures_.back().points.front();
}

void Path::AddRectangle(double left, double top, double right, double bottom) {
  MoveTo(right, top);
  LineTo(left, top);
  LineTo(left, bottom);
  LineTo(right, bottom);
  CloseFigure();
}

void Path::Append(const Path& other) {
  figures_.insert(figures_.end(), other.figures_.begin(), other.figures_.end());
  start_ = other.start_;
  open_ = other.open_;
}

bool Path::HasBeziers() const {
  return std::any_of(figures_.begin(), figures_.end(), [](const Figure& figure) {
    return std::find(figure.verbs.begin(), figure.verbs.end(), Figure::Verb::kBezier) !=
           figure.verbs.end();
  });
}

RECTFX Path::Bounds() const {
  if (figures_.empty()) return {};
  const POINTFIX first = figures_.front().points.front();
  RECTFX bounds{first.x, first.y, first.x, first.y};
  for (const Figure& figure : figures_) {
    for (const POINTFIX& point : figure.points) {
      bounds = {std::min(bounds.xLeft, point.x), std::min(bounds.yTop, point.y),
                std::max(bounds.xRight, point.x), std::max(bounds.yBottom, point.y)};
    }
  }
  return bounds;
}

Path Path::Flattened() const {
  Path flat;
  for (const Figure& figure : figures_) {
    const POINTFIX* point = figure.points.data();
    flat.MoveTo(*point);
    for (const Figure::Verb verb : figure.verbs) {
      if (verb == Figure::Verb::kLine) {
        flat.LineTo(*++point);
      } else {
        AppendChords(point, flat);
        point += 3;
      }
    }
    if (figure.closed) flat.CloseFigure();
  }
  return flat;
}

}  // namespace quillo::host
