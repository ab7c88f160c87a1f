#include "host/engine/far_path.h"

#include <algorithm>
#include <cmath>

#include "host/engine/polygons.h"

namespace quillo::host {

namespace {

// Pixels from the page's corner; far more than the largest sheet at the finest resolution.
constexpr FIX kReach = 1 << 16;
constexpr FIX kFarthest = kReach << 4;

/// Narrows the range [from, to] of t to where start + t·step is at most `limit`.
bool Narrow(double start, double step, double limit, double& from, double& to) {
  if (step == 0) return start <= limit;
  const double t = (limit - start) / step;
  (step > 0 ? to : from) = step > 0 ? std::min(to, t) : std::max(from, t);
  return from <= to;
}

/// Cuts a line to the near space; false when none of it is there.
bool CutLine(POINTFIX& a, POINTFIX& b) {
  const double dx = double{1} * b.x - a.x, dy = double{1} * b.y - a.y;
  double from = 0, to = 1;
  if (!Narrow(a.x, dx, kFarthest, from, to) ||
      !Narrow(-double{1} * a.x, -dx, kFarthest, from, to) ||
      !Narrow(a.y, dy, kFarthest, from, to) ||
      !Narrow(-double{1} * a.y, -dy, kFarthest, from, to)) {
    return false;
  }
  const POINTFIX start = a;
  const auto at = [&](double t) {
    return POINTFIX{static_cast<FIX>(std::lround(start.x + t * dx)),
                    static_cast<FIX>(std::lround(start.y + t * dy))};
  };
  if (from > 0) a = at(from);
  if (to < 1) b = at(to);
  return true;
}

}  // namespace

bool LeadsFar(const Path& path) {
  const RECTFX bounds = path.Bounds();
  return bounds.xLeft < -kFarthest || bounds.yTop < -kFarthest || bounds.xRight > kFarthest ||
         bounds.yBottom > kFarthest;
}

Path NearInside(const Path& path) {
  if (!LeadsFar(path)) return path;
  return ToPath(ClipPolygons(ToPolygons(path), {-kFarthest, -kFarthest, kFarthest, kFarthest}));
}

Path NearLine(const Path& path) {
  if (!LeadsFar(path)) return path;
  const Path flat = path.Flattened();
  Path cut;
  for (const Figure& figure : flat.Figures()) {
    bool drawing = false;
    const size_t count = figure.points.size();
    for (size_t i = 1; i < count + (figure.closed ? 1 : 0); ++i) {
      POINTFIX a = figure.points[i - 1], b = figure.points[i % count];
      const POINTFIX end = b;
      if (!CutLine(a, b)) {
        drawing = false;
        continue;
      }
      if (!drawing) cut.MoveTo(a);
      cut.LineTo(b);
      drawing = b.x == end.x && b.y == end.y;
    }
  }
  return cut;
}

}  // namespace quillo::host
