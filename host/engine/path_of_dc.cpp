#include "host/engine/path_of_dc.h"

#include <new>
#include <vector>

namespace quillo::host {

Path PathOf(HDC dc) {
  Path path;
  const int count = GetPath(dc, nullptr, nullptr, 0);
  if (count <= 0) return path;
  std::vector<POINT> points(static_cast<size_t>(count));
  std::vector<BYTE> types(points.size());
  if (GetPath(dc, points.data(), types.data(), count) != count) throw std::bad_alloc();
  const auto at = [&points](size_t i) { return POINTFIX{points[i].x, points[i].y}; };
  for (size_t i = 0; i < points.size(); ++i) {
    switch (types[i] & ~PT_CLOSEFIGURE) {
      case PT_MOVETO:
        path.MoveTo(at(i));
        break;
      case PT_BEZIERTO:
        path.BezierTo(at(i), at(i + 1), at(i + 2));  // always in threes
        i += 2;
        break;
      default:
        path.LineTo(at(i));
    }
    if ((types[i] & PT_CLOSEFIGURE) != 0) path.CloseFigure();
  }
  return path;
}

}  // namespace quillo::host
