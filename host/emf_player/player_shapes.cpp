// Records that draw shapes in a box: rectangles, ellipses, rounded rectangles and arcs.
//
// The boxes are those that GDI drew, right and bottom edge included: GDI takes the excluded edges
// off when it records a call of the compatible graphics mode. Shapes are built in logical space, so
// that every transform carries them.

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/emf_format/arc.h"
#include "host/emf_player/playback.h"

namespace quillo::host::emf {

namespace {

void MoveTo(Playback& dc, Path& path, PointD point) {
  const PointD at = dc.ToPage().Apply(point.x, point.y);
  path.MoveTo(at.x, at.y);
}

void LineTo(Playback& dc, Path& path, PointD point) {
  const PointD at = dc.ToPage().Apply(point.x, point.y);
  path.LineTo(at.x, at.y);
}

/// Curves behind the first point, which is where the path stands.
void AddCurves(Playback& dc, Path& path, const std::vector<PointD>& points) {
  for (size_t i = 1; i + 2 < points.size(); i += 3) {
    const PointD a = dc.ToPage().Apply(points[i].x, points[i].y);
    const PointD b = dc.ToPage().Apply(points[i + 1].x, points[i + 1].y);
    const PointD c = dc.ToPage().Apply(points[i + 2].x, points[i + 2].y);
    path.BezierTo(a.x, a.y, b.x, b.y, c.x, c.y);
  }
}

/// The box that the shape's line runs along: with a pen of style PS_INSIDEFRAME that is wider than
/// a pixel, so far inside that the line stays in the box.
Box Frame(Playback& dc, const RectL& rect) {
  const Box box = Box::Of(rect);
  const PenObject& pen = *dc.state().pen;
  const bool inside = pen.LineStyle() == PS_INSIDEFRAME && pen.width * dc.ToPage().Scale() > 1;
  return inside ? box.Inset(pen.width / 2.0) : box;
}

void PlayRectangle(Playback& dc, PayloadReader& record) {
  const Box box = Frame(dc, record.Read<RectL>());
  Path path;
  if (dc.ToPage().KeepsAxes()) {
    const PointD a = dc.ToPage().Apply(box.left, box.top);
    const PointD b = dc.ToPage().Apply(box.right, box.bottom);
    path.AddRectangle(std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x),
                      std::max(a.y, b.y));
  } else {
    MoveTo(dc, path, {box.right, box.top});
    LineTo(dc, path, {box.left, box.top});
    LineTo(dc, path, {box.left, box.bottom});
    LineTo(dc, path, {box.right, box.bottom});
    path.CloseFigure();
  }
  dc.DrawOutline(path, true);
}

void PlayEllipse(Playback& dc, PayloadReader& record) {
  const auto curves = ArcCurves(Frame(dc, record.Read<RectL>()), {0, -2 * std::numbers::pi});
  Path path;
  MoveTo(dc, path, curves[0]);
  AddCurves(dc, path, curves);
  path.CloseFigure();
  dc.DrawOutline(path, true);
}

void PlayRoundRect(Playback& dc, PayloadReader& record) {
  const Box box = Frame(dc, record.Read<RectL>());
  const auto corner = record.Read<SizeL>();
  const double width = std::min(std::fabs(static_cast<double>(corner.x)), box.Width());
  const double height = std::min(std::fabs(static_cast<double>(corner.y)), box.Height());

  // A quarter of an ellipse in each corner, counterclockwise from the right end of the top edge.
  constexpr double kQuarter = std::numbers::pi / 2;
  const Box corners[] = {
      {box.right - width, box.top, box.right, box.top + height},
      {box.left, box.top, box.left + width, box.top + height},
      {box.left, box.bottom - height, box.left + width, box.bottom},
      {box.right - width, box.bottom - height, box.right, box.bottom},
  };
  Path path;
  for (int i = 0; i < 4; ++i) {
    const auto curves = ArcCurves(corners[i], {-kQuarter * i, -kQuarter});
    if (i == 0) {
      MoveTo(dc, path, curves[0]);
    } else {
      LineTo(dc, path, curves[0]);
    }
    AddCurves(dc, path, curves);
  }
  path.CloseFigure();
  dc.DrawOutline(path, true);
}

// -- Arcs --------------------------------------------------------------------------------------

struct ArcRecord {
  Box box;
  Arc arc;
  bool drawable;  // a box without area has no arc
};

ArcRecord ReadArc(Playback& dc, PayloadReader& record) {
  const Box box = Frame(dc, record.Read<RectL>());
  const auto start = record.Read<PointL>();
  const auto end = record.Read<PointL>();
  const bool clockwise = dc.state().arc_direction == AD_CLOCKWISE;
  return {box, ArcBetween(box, start, end, clockwise), box.Width() > 0 && box.Height() > 0};
}

enum class ArcShape { kArc, kChord, kPie };

template <ArcShape shape>
void PlayArc(Playback& dc, PayloadReader& record) {
  const ArcRecord arc = ReadArc(dc, record);
  if (!record.ok() || !arc.drawable) return;
  const auto curves = ArcCurves(arc.box, arc.arc);
  Path path;
  if (shape == ArcShape::kPie) {
    MoveTo(dc, path, {arc.box.CenterX(), arc.box.CenterY()});
    LineTo(dc, path, curves[0]);
  } else {
    MoveTo(dc, path, curves[0]);
  }
  AddCurves(dc, path, curves);
  if (shape != ArcShape::kArc) path.CloseFigure();
  dc.DrawOutline(path, shape != ArcShape::kArc);
}

/// A line from the current position to the arc's start, then the arc; its end is the new position.
void ContinueWithArc(Playback& dc, const std::vector<PointD>& curves) {
  GrowingPath alone;
  Path& path = dc.Continue(dc.PathOr(alone));
  LineTo(dc, path, curves[0]);
  AddCurves(dc, path, curves);
  dc.Stroke(alone.path);
  const auto whole = [](double value) {
    return static_cast<int32_t>(std::lround(std::clamp(value, -2147483647.0, 2147483647.0)));
  };
  dc.state().position = {whole(curves.back().x), whole(curves.back().y)};
}

void PlayArcTo(Playback& dc, PayloadReader& record) {
  const ArcRecord arc = ReadArc(dc, record);
  if (record.ok() && arc.drawable) ContinueWithArc(dc, ArcCurves(arc.box, arc.arc));
}

void PlayAngleArc(Playback& dc, PayloadReader& record) {
  const auto center = record.Read<PointL>();
  const double radius = record.Read<uint32_t>();
  const double start = record.Read<float>();  // degrees, counterclockwise
  const double sweep = record.Read<float>();
  if (!record.ok()) return;
  if (!std::isfinite(start) || !std::isfinite(sweep)) {
    dc.Fault("an angle that is no number");
    return;
  }
  constexpr double kDegree = std::numbers::pi / 180;
  // Beyond a full turn the curve only covers itself.
  const double turns =
      std::fabs(sweep) > 360 ? std::copysign(360, sweep) + std::fmod(sweep, 360) : sweep;
  ContinueWithArc(
      dc, ArcCurves({center.x - radius, center.y - radius, center.x + radius, center.y + radius},
                    {-std::fmod(start, 360) * kDegree, -turns * kDegree}));
}

}  // namespace

void AddShapeHandlers(HandlerTable& table) {
  table[kEmrRECTANGLE] = PlayRectangle;
  table[kEmrELLIPSE] = PlayEllipse;
  table[kEmrROUNDRECT] = PlayRoundRect;
  table[kEmrARC] = PlayArc<ArcShape::kArc>;
  table[kEmrCHORD] = PlayArc<ArcShape::kChord>;
  table[kEmrPIE] = PlayArc<ArcShape::kPie>;
  table[kEmrARCTO] = PlayArcTo;
  table[kEmrANGLEARC] = PlayAngleArc;
}

}  // namespace quillo::host::emf
