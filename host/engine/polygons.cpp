#include "host/engine/polygons.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace quillo::host {
namespace {

/// One side of a rectangle: the half plane of points whose coordinate is on the inner side.
struct Side {
  FIX POINTFIX::*across;  // the coordinate that is compared
  FIX POINTFIX::*along;
  FIX border;
  bool keep_greater;  // the inside lies towards greater values

  bool Inside(const POINTFIX& p) const {
    return keep_greater ? p.*across >= border : p.*across <= border;
  }
  POINTFIX Crossing(const POINTFIX& a, const POINTFIX& b) const {
    const double t =
        (static_cast<double>(border) - a.*across) / (static_cast<double>(b.*across) - a.*across);
    POINTFIX crossing;
    crossing.*across = border;
    crossing.*along =
        static_cast<FIX>(std::lround(a.*along + t * (static_cast<double>(b.*along) - a.*along)));
    return crossing;
  }
};

bool SamePoint(const POINTFIX& a, const POINTFIX& b) { return a.x == b.x && a.y == b.y; }

Polygon ClipToSide(const Polygon& polygon, const Side& side) {
  Polygon kept;
  for (size_t i = 0; i < polygon.size(); ++i) {
    const POINTFIX& from = polygon[i];
    const POINTFIX& to = polygon[(i + 1) % polygon.size()];
    if (side.Inside(from)) kept.push_back(from);
    if (side.Inside(from) != side.Inside(to)) kept.push_back(side.Crossing(from, to));
  }
  return kept;
}

}  // namespace

std::vector<Polygon> ToPolygons(const Path& path) {
  std::vector<Polygon> polygons;
  const Path flat = path.Flattened();
  for (const Figure& figure : flat.Figures()) polygons.push_back(figure.points);
  return polygons;
}

Path ToPath(const std::vector<Polygon>& polygons) {
  Path path;
  for (const Polygon& polygon : polygons) {
    path.MoveTo(polygon.front());
    for (size_t i = 1; i < polygon.size(); ++i) path.LineTo(polygon[i]);
    path.CloseFigure();
  }
  return path;
}

std::vector<Polygon> ClipPolygons(const std::vector<Polygon>& polygons, const RECTFX& rect) {
  const Side sides[] = {{&POINTFIX::x, &POINTFIX::y, rect.xLeft, true},
                        {&POINTFIX::y, &POINTFIX::x, rect.yTop, true},
                        {&POINTFIX::x, &POINTFIX::y, rect.xRight, false},
                        {&POINTFIX::y, &POINTFIX::x, rect.yBottom, false}};
  std::vector<Polygon> clipped;
  for (Polygon polygon : polygons) {
    for (const Side& side : sides) polygon = ClipToSide(polygon, side);
    // A corner on a side is also its crossing with it.
    polygon.erase(std::unique(polygon.begin(), polygon.end(), SamePoint), polygon.end());
    if (polygon.size() > 1 && SamePoint(polygon.front(), polygon.back())) polygon.pop_back();
    if (polygon.size() >= 3) clipped.push_back(std::move(polygon));
  }
  return clipped;
}

Region FillPolygons(const std::vector<Polygon>& polygons, FillMode mode) {
  std::vector<POINT> points;
  std::vector<INT> counts;
  for (const Polygon& polygon : polygons) {
    if (polygon.size() < 3) continue;
    for (const POINTFIX& p : polygon) points.push_back({FXTOLROUND(p.x), FXTOLROUND(p.y)});
    counts.push_back(static_cast<INT>(polygon.size()));
  }
  Region region(counts.empty() ? CreateRectRgn(0, 0, 0, 0)
                               : CreatePolyPolygonRgn(
                                     points.data(), counts.data(), static_cast<INT>(counts.size()),
                                     mode == FillMode::kWinding ? WINDING : ALTERNATE));
  if (!region) throw std::bad_alloc();
  return region;
}

}  // namespace quillo::host
