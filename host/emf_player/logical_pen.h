#pragma once

#include "host/emf_format/transform.h"
#include "host/engine/path.h"

namespace quillo::host::emf {

/// Extends a path of page pixels by points in logical units (PointL, PointS or PointD).
class LogicalPen {
 public:
  /// Both must outlive the pen.
  LogicalPen(Path& path, const Transform& to_page) : path_(path), to_page_(to_page) {}

  template <typename Point>
  void MoveTo(const Point& point) {
    const PointD at = Map(point);
    path_.MoveTo(at.x, at.y);
  }
  template <typename Point>
  void LineTo(const Point& point) {
    const PointD at = Map(point);
    path_.LineTo(at.x, at.y);
  }
  /// `points`: two control points and the end.
  template <typename Point>
  void BezierTo(const Point* points) {
    const PointD a = Map(points[0]), b = Map(points[1]), c = Map(points[2]);
    path_.BezierTo(a.x, a.y, b.x, b.y, c.x, c.y);
  }
  void CloseFigure() { path_.CloseFigure(); }

 private:
  template <typename Point>
  PointD Map(const Point& point) const {
    return to_page_.Apply(point.x, point.y);
  }

  Path& path_;
  const Transform& to_page_;
};

}  // namespace quillo::host::emf
