#include <vector>

#include "host/emf_player/emf_player.h"
#include "host/emf_player/logical_pen.h"
#include "host/emf_player/path_work.h"
#include "host/emf_player/rounding.h"
#include "host/engine/far_path.h"

// Drawing with the state of the DC: clip, pen, brush and open path.
namespace quillo::host::emf {

namespace {

size_t PointCount(const Path& path) {
  size_t count = 0;
  for (const Figure& figure : path.Figures()) count += figure.points.size();
  return count;
}

}  // namespace

DrawState EmfPlayer::Drawing() {
  if (!drawable_.IsRectangle()) Spend(static_cast<double>(PointCount(drawable_.Outline())));
  DrawState drawing;
  drawing.clip = drawable_;
  const PointD origin = device_to_page_.Apply(state_.brush_origin.x, state_.brush_origin.y);
  drawing.brush_origin = {ToPixel(origin.x), ToPixel(origin.y)};
  drawing.rop2 = static_cast<uint8_t>(state_.rop2);
  drawing.opaque_background = state_.background_mode == OPAQUE;
  return drawing;
}

FillMode EmfPlayer::PolyFillMode() const {
  return state_.poly_fill_mode == WINDING ? FillMode::kWinding : FillMode::kAlternate;
}

void EmfPlayer::Stroke(const Path& outline) {
  PenDescription pen;
  if (!DescribePen(pen)) return;
  for (const Path& part : SplitLine(NearLine(outline), kMaxStrokedCrossings)) {
    if (!Spend(Crossings(part) * kPointsPerCrossing)) return;
    canvas_.Stroke(part, pen, Drawing());
  }
}

std::optional<Path> EmfPlayer::Inside(const Path& path) {
  Path shape = NearInside(path);
  const double crossings = Crossings(shape);
  if (crossings > kMaxCrossings) {
    Fault("the interior of its path is too complex to draw");
    return std::nullopt;
  }
  if (!Spend(crossings * kPointsPerCrossing)) return std::nullopt;
  return shape;
}

void EmfPlayer::Fill(const Path& outline) {
  BrushDescription brush;
  if (!DescribeBrush(*state_.brush, brush)) return;
  if (const auto shape = Inside(outline)) canvas_.Fill(*shape, brush, PolyFillMode(), Drawing());
}

void EmfPlayer::StrokeAndFill(const Path& outline) {
  PenDescription pen;
  BrushDescription brush;
  if (LeadsFar(outline) || Crossings(outline) > kMaxStrokedCrossings || !DescribePen(pen) ||
      !DescribeBrush(*state_.brush, brush)) {
    Fill(outline);
    Stroke(outline);
    return;
  }
  if (!Inside(outline)) return;
  canvas_.StrokeAndFill(outline, pen, brush, PolyFillMode(), Drawing());
}

void EmfPlayer::StrokeLine(PointL end) {
  Path line;
  LogicalPen pen_on_page(line, to_page_);
  pen_on_page.MoveTo(state_.position);
  pen_on_page.LineTo(end);
  if (LeadsFar(line)) {
    Stroke(line);
    return;
  }
  PenDescription pen;
  if (!DescribePen(pen)) return;
  const std::vector<POINTFIX>& ends = line.Figures().front().points;
  canvas_.Line(ends[0], ends[1], pen, Drawing());
}

void EmfPlayer::DrawOutline(const Path& outline, bool closed_shape) {
  if (path_.IsOpen()) {
    path_.Contents().path.Append(outline);
    path_.Contents().figure_open = false;
  } else if (closed_shape) {
    StrokeAndFill(outline);
  } else {
    Stroke(outline);
  }
}

Path& EmfPlayer::Continue(GrowingPath& growing) const {
  if (!growing.figure_open) {
    LogicalPen(growing.path, to_page_).MoveTo(state_.position);
    growing.figure_open = true;
  }
  return growing.path;
}

}  // namespace quillo::host::emf
