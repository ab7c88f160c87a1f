// Records that draw lines, polygons and Béziers from lists of points, in 32 and 16 bits.

#include <numeric>

#include "host/emf_player/playback.h"

namespace quillo::host::emf {

namespace {

constexpr size_t kBoundsBytes = 16;  // each of these records begins with the drawing's bounds

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

void MoveTo(Playback& dc, Path& path, PointL point) {
  const PointD at = dc.ToPage().Apply(point.x, point.y);
  path.MoveTo(at.x, at.y);
}

void LineTo(Playback& dc, Path& path, PointL point) {
  const PointD at = dc.ToPage().Apply(point.x, point.y);
  path.LineTo(at.x, at.y);
}

void BezierTo(Playback& dc, Path& path, const PointL* points) {
  const PointD a = dc.ToPage().Apply(points[0].x, points[0].y);
  const PointD b = dc.ToPage().Apply(points[1].x, points[1].y);
  const PointD c = dc.ToPage().Apply(points[2].x, points[2].y);
  path.BezierTo(a.x, a.y, b.x, b.y, c.x, c.y);
}

/// One figure of lines.
void AddLines(Playback& dc, Path& path, std::span<const PointL> points, bool closed) {
  if (points.size() < 2) return;
  MoveTo(dc, path, points[0]);
  for (const PointL& point : points.subspan(1)) LineTo(dc, path, point);
  if (closed) path.CloseFigure();
}

template <typename Point, bool closed>
void PlayPoly(Playback& dc, PayloadReader& record) {
  record.Skip(kBoundsBytes);
  const auto points = ReadPoints<Point>(record, record.Read<uint32_t>());
  if (!record.ok()) return;
  Path path;
  AddLines(dc, path, points, closed);
  dc.DrawOutline(path, closed);
}

template <typename Point, bool closed>
void PlayPolyPoly(Playback& dc, PayloadReader& record) {
  record.Skip(kBoundsBytes);
  const auto figure_count = record.Read<uint32_t>();
  const auto point_count = record.Read<uint32_t>();
  const auto counts = record.ReadArray<uint32_t>(figure_count);
  const auto points = ReadPoints<Point>(record, point_count);
  if (!record.ok()) return;
  if (std::accumulate(counts.begin(), counts.end(), uint64_t{0}) > points.size()) {
    dc.Fault("its figures have more points than the record");
    return;
  }
  Path path;
  std::span<const PointL> rest(points);
  for (const uint32_t count : counts) {
    AddLines(dc, path, rest.first(count), closed);
    rest = rest.subspan(count);
  }
  dc.DrawOutline(path, closed);
}

template <typename Point>
void PlayPolyBezier(Playback& dc, PayloadReader& record) {
  record.Skip(kBoundsBytes);
  const auto points = ReadPoints<Point>(record, record.Read<uint32_t>());
  if (!record.ok()) return;
  if (points.size() % 3 != 1) {
    dc.Fault(std::to_string(points.size()) + " points make no Bézier curve");
    return;
  }
  Path path;
  MoveTo(dc, path, points[0]);
  for (size_t i = 1; i < points.size(); i += 3) BezierTo(dc, path, &points[i]);
  dc.DrawOutline(path, false);
}

template <typename Point>
void PlayPolyLineTo(Playback& dc, PayloadReader& record) {
  record.Skip(kBoundsBytes);
  const auto points = ReadPoints<Point>(record, record.Read<uint32_t>());
  if (!record.ok() || points.empty()) return;
  GrowingPath alone;
  Path& path = dc.Continue(dc.PathOr(alone));
  for (const PointL& point : points) LineTo(dc, path, point);
  dc.Stroke(alone.path);
  dc.state().position = points.back();
}

template <typename Point>
void PlayPolyBezierTo(Playback& dc, PayloadReader& record) {
  record.Skip(kBoundsBytes);
  const auto points = ReadPoints<Point>(record, record.Read<uint32_t>());
  if (!record.ok() || points.empty()) return;
  if (points.size() % 3 != 0) {
    dc.Fault(std::to_string(points.size()) + " points continue no Bézier curve");
    return;
  }
  GrowingPath alone;
  Path& path = dc.Continue(dc.PathOr(alone));
  for (size_t i = 0; i < points.size(); i += 3) BezierTo(dc, path, &points[i]);
  dc.Stroke(alone.path);
  dc.state().position = points.back();
}

void PlayMoveTo(Playback& dc, PayloadReader& record) {
  dc.state().position = record.Read<PointL>();
  dc.path().figure_open = false;
}

void PlayLineTo(Playback& dc, PayloadReader& record) {
  const auto end = record.Read<PointL>();
  if (dc.InPath()) {
    LineTo(dc, dc.Continue(dc.path()), end);
  } else {
    dc.StrokeLine(end);
  }
  dc.state().position = end;
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
void PlayPolyDraw(Playback& dc, PayloadReader& record) {
  record.Skip(kBoundsBytes);
  const auto count = record.Read<uint32_t>();
  const auto points = ReadPoints<Point>(record, count);
  const auto types = record.ReadArray<uint8_t>(points.size());
  if (!record.ok()) return;
  if (!PolyDrawTypesFit(types)) {
    dc.Fault("its types of points do not fit together");
    return;
  }
  GrowingPath alone;
  GrowingPath& growing = dc.PathOr(alone);
  PointL figure_start = dc.state().position;
  for (size_t i = 0; i < points.size(); ++i) {
    if (types[i] == PT_MOVETO) {
      growing.figure_open = false;
      figure_start = points[i];
    } else if ((types[i] & ~PT_CLOSEFIGURE) == PT_LINETO) {
      LineTo(dc, dc.Continue(growing), points[i]);
    } else {
      BezierTo(dc, dc.Continue(growing), &points[i]);
      i += 2;
    }
    dc.state().position = points[i];
    if ((types[i] & PT_CLOSEFIGURE) != 0) {
      growing.CloseFigure();
      dc.state().position = figure_start;
    }
  }
  dc.Stroke(alone.path);
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
