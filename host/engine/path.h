#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <vector>

namespace quillo::host {

/// Device pixels to 28.4 fixed point, rounded to nearest; values beyond the format are clamped.
FIX ToFix(double pixels);
POINTFIX ToPointFix(double x, double y);

enum class FillMode : uint32_t { kAlternate = FP_ALTERNATEMODE, kWinding = FP_WINDINGMODE };

/// One figure of a path: a start point, then lines and cubic Béziers.
struct Figure {
  enum class Verb : uint8_t { kLine, kBezier };  // of one point, of three

  std::vector<POINTFIX> points;  // the start point, then the points of each verb
  std::vector<Verb> verbs;
  bool closed = false;  // an edge joins the end to the start
};

/// A path in device space (pixels, y downwards, 28.4 fixed point).
///
/// As with GDI, MoveTo begins a figure; a move without lines leaves none. After CloseFigure the
/// current point is the figure's start.
class Path {
 public:
  void MoveTo(POINTFIX point);
  void LineTo(POINTFIX point);
  void BezierTo(POINTFIX control1, POINTFIX control2, POINTFIX end);
  void CloseFigure();

  void MoveTo(double x, double y) { MoveTo(ToPointFix(x, y)); }
  void LineTo(double x, double y) { LineTo(ToPointFix(x, y)); }
  void BezierTo(double x1, double y1, double x2, double y2, double x3, double y3) {
    BezierTo(ToPointFix(x1, y1), ToPointFix(x2, y2), ToPointFix(x3, y3));
  }
  /// A closed rectangle in GDI's order: top right, top left, bottom left, bottom right.
  void AddRectangle(double left, double top, double right, double bottom);
  void Append(const Path& other);

  const std::vector<Figure>& Figures() const { return figures_; }
  bool Empty() const { return figures_.empty(); }
  bool HasBeziers() const;
  /// The bounding rectangle of all points, including control points; empty at (0, 0) without any.
  RECTFX Bounds() const;

  /// The same path with each curve cut into chords that stay within 1/8 pixel of it.
  Path Flattened() const;

 private:
  Figure& OpenFigure();

  std::vector<Figure> figures_;
  POINTFIX start_{};   // where the next figure begins
  bool open_ = false;  // whether the last figure takes more points
};

}  // namespace quillo::host
