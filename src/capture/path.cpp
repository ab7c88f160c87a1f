#include "capture/path.h"

#include <optional>
#include <span>

#include "capture/builders.h"
#include "capture/geometry.h"

namespace quillo {
namespace {

using namespace records;

/// The rectangle that a closed figure is; nothing for curves and winding fills.
///
/// Compatibility: only figures whose first edge is horizontal count, and the sides are taken from
/// fixed corners without sorting them, as in existing streams.
std::optional<Rect> AsRectangle(FLONG flags, std::span<const POINTFIX> p, uint32_t fill_mode) {
  if (p.size() != 4 || (flags & PD_BEZIERS) != 0 || (flags & PD_CLOSEFIGURE) == 0 ||
      fill_mode == FP_WINDINGMODE) {
    return std::nullopt;
  }
  if (p[0].y != p[1].y || p[1].x != p[2].x || p[2].y != p[3].y || p[3].x != p[0].x) {
    return std::nullopt;
  }
  const Point top_left = ToPixels(p[1]);
  return Rect{top_left.x, top_left.y, FixToPixel(p[0].x), FixToPixel(p[2].y)};
}

class PathWriter {
 public:
  PathWriter(DEVICE_PDEV& device, uint32_t fill_mode) : device_(device), fill_mode_(fill_mode) {}

  /// One run of the path; false on a malformed curve.
  bool WriteRun(const PATHDATA& run) {
    std::span<const POINTFIX> points;
    if (run.pptfx != nullptr) points = {run.pptfx, run.count};

    if ((run.flags & PD_BEGINSUBPATH) != 0) points = Begin(run.flags, points);
    if ((run.flags & PD_BEZIERS) != 0) {
      if (points.size() % 3 != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
      }
      for (; !points.empty(); points = points.subspan(3)) CurveTo(points.first<3>());
    } else {
      for (const POINTFIX& point : points) LineTo(ToPixels(point));
    }
    if ((run.flags & PD_CLOSEFIGURE) != 0) EmitRecord(device_, REC_CLOSEFIGURE);
    return true;
  }

  void End() {
    if (open_) EmitRecord(device_, REC_ENDPATH);
  }

  [[nodiscard]] bool Drawn() const { return drawn_; }

 private:
  /// Begins a figure and returns the points that are left.
  std::span<const POINTFIX> Begin(FLONG flags, std::span<const POINTFIX> points) {
    if (!open_) {
      open_ = true;
      EmitRecord(device_, REC_BEGINPATH);
      EmitSetBkColor(device_, device_.remembered_colour);
    }
    if (points.empty()) return points;
    if (const auto rectangle = AsRectangle(flags, points, fill_mode_)) {
      EmitRectangle(device_, *rectangle);
      drawn_ = true;
      return {};
    }
    position_ = ToPixels(points.front());
    EmitMoveTo(device_, position_);
    return points.subspan(1);
  }

  void LineTo(Point point) {
    EmitLineTo(device_, point);
    position_ = point;
    drawn_ = true;
  }

  void CurveTo(std::span<const POINTFIX, 3> points) {
    const Point curve[] = {position_, ToPixels(points[0]), ToPixels(points[1]),
                           ToPixels(points[2])};
    EmitPolyBezier(device_, curve);
    position_ = curve[3];
    drawn_ = true;
  }

  DEVICE_PDEV& device_;
  uint32_t fill_mode_;
  Point position_ = {};  // the last point written
  bool open_ = false;
  bool drawn_ = false;
};

}  // namespace

WrittenPath WritePath(DEVICE_PDEV& device, PATHOBJ* path, uint32_t fill_mode) {
  if (path == nullptr) return WrittenPath::kRefused;
  PathWriter writer(device, fill_mode);
  PATHOBJ_vEnumStart(path);
  for (bool more = true; more;) {
    PATHDATA run = {};
    more = PATHOBJ_bEnum(path, &run) != FALSE;
    if (!writer.WriteRun(run)) return WrittenPath::kRefused;
  }
  writer.End();
  return writer.Drawn() ? WrittenPath::kDrawn : WrittenPath::kEmpty;
}

Rect PathBounds(PATHOBJ* path) {
  if (path == nullptr) return {};
  RECTFX bounds = {};
  PATHOBJ_vGetBounds(path, &bounds);
  return ToPixels(bounds);
}

}  // namespace quillo
