// Records that draw lines, polygons and Béziers from lists of points, in 32 and 16 bits.

#include <numeric>

#include "host/emf_player/emf_player.h"
#include "host/emf_player/logical_pen.h"
#include "host/emf_player/record_fields.h"
#include "host/emf_player/record_handlers.h"

namespace quillo::host::emf {

namespace {

PointL Widen(PointL point) { return point; }
PointL Widen(PointS point) { return {point.x, point.y}; }

/// `count` points of type Point (PointL or PointS).
template <typename Point>
std::vector<PointL> ReadPoints(PayloadReader& record, size_t count) {
  const std::vector<Point> points = record.ReadArray<Point>(count);
  std::vector<PointL> wide(points.size());
  for (size_t i = 0; i < points.size(); ++i) wide[i] = Widen(points[i]);
  return wide;
}

/// One figure of lines.
void AddLines(LogicalPen pen, std::span<const PointL> points, bool closed) {
  if (points.size() < 2) return;
  pen.MoveTo(points[0]);
  for (const PointL& point : points.subspan(1)) pen.LineTo(point);
  if (closed) pen.CloseFigure();
}

template <typename Point, bool closed>
void PlayPoly(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  const auto points = ReadPoints<Point>(record, record.Read<uint32_t>());
  if (!record.ok()) return;
  Path path;
  AddLines({path, player.ToPage()}, points, closed);
  player.DrawOutline(path, closed);
}

template <typename Point, bool closed>
void PlayPolyPoly(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  const auto figure_count = record.Read<uint32_t>();
  const auto point_count = record.Read<uint32_t>();
  const auto counts = record.ReadArray<uint32_t>(figure_count);
  const auto points = ReadPoints<Point>(record, point_count);
  if (!record.ok()) return;
  if (std::accumulate(counts.begin(), counts.end(), uint64_t{0}) > points.size()) {
    player.Fault("its figures have more points than the record");
    return;
  }
  Path path;
  std::span<const PointL> rest(points);
  for (const uint32_t count : counts) {
    AddLines({path, player.ToPage()}, rest.first(count), closed);
    rest = rest.subspan(count);
  }
  player.DrawOutline(path, closed);
}

template <typename Point>
void PlayPolyBezier(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  const auto points = ReadPoints<Point>(record, record.Read<uint32_t>());
  if (!record.ok()) return;
  if (points.size() % 3 != 1) {
    player.Fault(std::to_string(points.size()) + " points do not make a Bézier curve");
    return;
  }
  Path path;
  LogicalPen pen(path, player.ToPage());
  pen.MoveTo(points[0]);
  for (size_t i = 1; i < points.size(); i += 3) pen.BezierTo(&points[i]);
  player.DrawOutline(path, false);
}

template <typename Point>
void PlayPolyLineTo(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  const auto points = ReadPoints<Point>(record, record.Read<uint32_t>());
  if (!record.ok() || points.empty()) return;
  GrowingPath alone;
  LogicalPen pen(player.Continue(player.path().OpenOr(alone)), player.ToPage());
  for (const PointL& point : points) pen.LineTo(point);
  player.Stroke(alone.path);
  player.state().position = points.back();
}

template <typename Point>
void PlayPolyBezierTo(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  const auto points = ReadPoints<Point>(record, record.Read<uint32_t>());
  if (!record.ok() || points.empty()) return;
  if (points.size() % 3 != 0) {
    player.Fault(std::to_string(points.size()) + " points do not continue a Bézier curve");
    return;
  }
  GrowingPath alone;
  LogicalPen pen(player.Continue(player.path().OpenOr(alone)), player.ToPage());
  for (size_t i = 0; i < points.size(); i += 3) pen.BezierTo(&points[i]);
  player.Stroke(alone.path);
  player.state().position = points.back();
}

void PlayMoveTo(EmfPlayer& player, PayloadReader& record) {
  player.state().position = record.Read<PointL>();
  player.path().Contents().figure_open = false;
}

void PlayLineTo(EmfPlayer& player, PayloadReader& record) {
  const auto end = record.Read<PointL>();
  if (player.path().IsOpen()) {
    LogicalPen(player.Continue(player.path().Contents()), player.ToPage()).LineTo(end);
  } else {
    player.StrokeLine(end);
  }
  player.state().position = end;
}

/// The types of PolyDraw's points, PT_CLOSEFIGURE aside, are all valid and Béziers come in threes.
bool PolyDrawTypesFit(const std::vector<uint8_t>& types) {
  for (size_t i = 0; i < types.size(); ++i) {
    switch (types[i]) {
      case PT_MOVETO:
      case PT_LINETO:
      case PT_LINETO | PT_CLOSEFIGURE:
        break;
      case PT_BEZIERTO:
        if (types.size() - i < 3 || types[i + 1] != PT_BEZIERTO ||
            (types[i + 2] & ~PT_CLOSEFIGURE) != PT_BEZIERTO) {
          return false;
        }
        i += 2;
        break;
      default:
        return false;
    }
  }
  return true;
}

template <typename Point>
void PlayPolyDraw(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  const auto count = record.Read<uint32_t>();
  const auto points = ReadPoints<Point>(record, count);
  const auto types = record.ReadArray<uint8_t>(points.size());
  if (!record.ok()) return;
  if (!PolyDrawTypesFit(types)) {
    player.Fault("its point types are inconsistent");
    return;
  }
  GrowingPath alone;
  GrowingPath& growing = player.path().OpenOr(alone);
  PointL figure_start = player.state().position;
  for (size_t i = 0; i < points.size(); ++i) {
    if (types[i] == PT_MOVETO) {
      growing.figure_open = false;
      figure_start = points[i];
    } else if ((types[i] & ~PT_CLOSEFIGURE) == PT_LINETO) {
      LogicalPen(player.Continue(growing), player.ToPage()).LineTo(points[i]);
    } else {
      LogicalPen(player.Continue(growing), player.ToPage()).BezierTo(&points[i]);
      i += 2;
    }
    player.state().position = points[i];
    if ((types[i] & PT_CLOSEFIGURE) != 0) {
      growing.CloseFigure();
      player.state().position = figure_start;
    }
  }
  player.Stroke(alone.path);
}

}  // namespace

void AddLineHandlers(HandlerTable& table) {
  table[kEmrPOLYLINE] = PlayPoly<PointL, false>;
  table[kEmrPOLYLINE16] = PlayPoly<PointS, false>;
  table[kEmrPOLYGON] = PlayPoly<PointL, true>;
  table[kEmrPOLYGON16] = PlayPoly<PointS, true>;
  table[kEmrPOLYPOLYLINE] = PlayPolyPoly<PointL, false>;
  table[kEmrPOLYPOLYLINE16] = PlayPolyPoly<PointS, false>;
  table[kEmrPOLYPOLYGON] = PlayPolyPoly<PointL, true>;
  table[kEmrPOLYPOLYGON16] = PlayPolyPoly<PointS, true>;
  table[kEmrPOLYBEZIER] = PlayPolyBezier<PointL>;
  table[kEmrPOLYBEZIER16] = PlayPolyBezier<PointS>;
  table[kEmrPOLYLINETO] = PlayPolyLineTo<PointL>;
  table[kEmrPOLYLINETO16] = PlayPolyLineTo<PointS>;
  table[kEmrPOLYBEZIERTO] = PlayPolyBezierTo<PointL>;
  table[kEmrPOLYBEZIERTO16] = PlayPolyBezierTo<PointS>;
  table[kEmrPOLYDRAW] = PlayPolyDraw<PointL>;
  table[kEmrPOLYDRAW16] = PlayPolyDraw<PointS>;
  table[kEmrMOVETOEX] = PlayMoveTo;
  table[kEmrLINETO] = PlayLineTo;
}

}  // namespace quillo::host::emf
