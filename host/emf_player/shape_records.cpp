// Records that draw shapes in a box: rectangles, ellipses, rounded rectangles and arcs.
//
// The boxes include their right and bottom edges: in the compatible graphics mode GDI takes the
// excluded edges off before it records a call. Shapes are built in logical space, so that every
// transform applies to them.

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/emf_format/arc.h"
#include "host/emf_player/emf_player.h"
#include "host/emf_player/logical_pen.h"
#include "host/emf_player/record_handlers.h"

namespace quillo::host::emf {

namespace {

/// The curves of ArcCurves without the first point, which the path has already.
void AddCurves(LogicalPen& pen, const std::vector<PointD>& points) {
  for (size_t i = 1; i + 2 < points.size(); i += 3) pen.BezierTo(&points[i]);
}

/// The box that the shape's line runs along. For a pen of style PS_INSIDEFRAME that is wider than a
/// pixel it is inset, so that the line stays inside the record's box.
Box Frame(EmfPlayer& player, const RectL& rect) {
  const Box box = Box::Of(rect);
  const PenObject& pen = *player.state().pen;
  const bool inside = pen.LineStyle() == PS_INSIDEFRAME && pen.width * player.ToPage().Scale() > 1;
  return inside ? box.Inset(pen.width / 2.0) : box;
}

void PlayRectangle(EmfPlayer& player, PayloadReader& record) {
  const Box box = Frame(player, record.Read<RectL>());
  Path path;
  if (player.ToPage().KeepsAxes()) {
    const PointD a = player.ToPage().Apply(box.left, box.top);
    const PointD b = player.ToPage().Apply(box.right, box.bottom);
    path.AddRectangle(std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x),
                      std::max(a.y, b.y));
  } else {
    LogicalPen pen(path, player.ToPage());
    pen.MoveTo(PointD{box.right, box.top});
    pen.LineTo(PointD{box.left, box.top});
    pen.LineTo(PointD{box.left, box.bottom});
    pen.LineTo(PointD{box.right, box.bottom});
    pen.CloseFigure();
  }
  player.DrawOutline(path, true);
}

void PlayEllipse(EmfPlayer& player, PayloadReader& record) {
  const auto curves = ArcCurves(Frame(player, record.Read<RectL>()), {0, -2 * std::numbers::pi});
  Path path;
  LogicalPen pen(path, player.ToPage());
  pen.MoveTo(curves[0]);
  AddCurves(pen, curves);
  pen.CloseFigure();
  player.DrawOutline(path, true);
}

void PlayRoundRect(EmfPlayer& player, PayloadReader& record) {
  const Box box = Frame(player, record.Read<RectL>());
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
  LogicalPen pen(path, player.ToPage());
  for (int i = 0; i < 4; ++i) {
    const auto curves = ArcCurves(corners[i], {-kQuarter * i, -kQuarter});
    if (i == 0) {
      pen.MoveTo(curves[0]);
    } else {
      pen.LineTo(curves[0]);
    }
    AddCurves(pen, curves);
  }
  path.CloseFigure();
  player.DrawOutline(path, true);
}

// -- Arcs --------------------------------------------------------------------------------------

struct ArcRecord {
  Box box;
  Arc arc;
  bool drawable;  // a box without area has no arc
};

ArcRecord ReadArc(EmfPlayer& player, PayloadReader& record) {
  const Box box = Frame(player, record.Read<RectL>());
  const auto start = record.Read<PointL>();
  const auto end = record.Read<PointL>();
  const bool clockwise = player.state().arc_direction == AD_CLOCKWISE;
  return {box, ArcBetween(box, start, end, clockwise), box.Width() > 0 && box.Height() > 0};
}

enum class ArcShape { kArc, kChord, kPie };

template <ArcShape shape>
void PlayArc(EmfPlayer& player, PayloadReader& record) {
  const ArcRecord arc = ReadArc(player, record);
  if (!record.ok() || !arc.drawable) return;
  const auto curves = ArcCurves(arc.box, arc.arc);
  Path path;
  LogicalPen pen(path, player.ToPage());
  if (shape == ArcShape::kPie) {
    pen.MoveTo(PointD{arc.box.CentreX(), arc.box.CentreY()});
    pen.LineTo(curves[0]);
  } else {
    pen.MoveTo(curves[0]);
  }
  AddCurves(pen, curves);
  if (shape != ArcShape::kArc) pen.CloseFigure();
  player.DrawOutline(path, shape != ArcShape::kArc);
}

/// A line from the current position to the arc's start, then the arc; its end is the new position.
void ContinueWithArc(EmfPlayer& player, const std::vector<PointD>& curves) {
  GrowingPath alone;
  LogicalPen pen(player.Continue(player.path().OpenOr(alone)), player.ToPage());
  pen.LineTo(curves[0]);
  AddCurves(pen, curves);
  player.Stroke(alone.path);
  const auto whole = [](double value) {
    return static_cast<int32_t>(std::lround(std::clamp(value, -2147483647.0, 2147483647.0)));
  };
  player.state().position = {whole(curves.back().x), whole(curves.back().y)};
}

void PlayArcTo(EmfPlayer& player, PayloadReader& record) {
  const ArcRecord arc = ReadArc(player, record);
  if (record.ok() && arc.drawable) ContinueWithArc(player, ArcCurves(arc.box, arc.arc));
}

void PlayAngleArc(EmfPlayer& player, PayloadReader& record) {
  const auto centre = record.Read<PointL>();
  const double radius = record.Read<uint32_t>();
  const double start = record.Read<float>();  // degrees, counterclockwise
  const double sweep = record.Read<float>();
  if (!record.ok()) return;
  if (!std::isfinite(start) || !std::isfinite(sweep)) {
    player.Fault("an angle is not a number");
    return;
  }
  constexpr double kDegree = std::numbers::pi / 180;
  // After a full turn the curve only covers itself.
  const double turns =
      std::fabs(sweep) > 360 ? std::copysign(360, sweep) + std::fmod(sweep, 360) : sweep;
  ContinueWithArc(player, ArcCurves({centre.x - radius, centre.y - radius, centre.x + radius,
                                     centre.y + radius},
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
