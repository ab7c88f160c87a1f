#include "host/emf_format/page_mapping.h"

#include <algorithm>

namespace quillo::host::emf {

namespace {

constexpr double kMillimetresPerInch = 25.4;

/// Sizes are compared in millimetres, as pixels of the reference device need not be square.
struct Physical {
  double width;   // mm
  double height;  // mm
};

Physical SizeInMillimetres(const MetafileHeader& header, const FrameRect& frame) {
  return {frame.width * header.millimetres.x / header.device.x,
          frame.height * header.millimetres.y / header.device.y};
}

Transform MapFrame(const FrameRect& frame, double width, double height, PointD corner) {
  const double x = width / frame.width;
  const double y = height / frame.height;
  return {x, 0, 0, y, corner.x - frame.left * x, corner.y - frame.top * y};
}

}  // namespace

FrameRect FrameOf(const MetafileHeader& header) {
  const RectL& frame = header.frame;
  if (frame.right > frame.left && frame.bottom > frame.top) {
    const double x = header.device.x / (header.millimetres.x * 100.0);
    const double y = header.device.y / (header.millimetres.y * 100.0);
    return {frame.left * x, frame.top * y, (double{1} * frame.right - frame.left) * x,
            (double{1} * frame.bottom - frame.top) * y};
  }
  const RectL& bounds = header.bounds;
  if (bounds.right >= bounds.left && bounds.bottom >= bounds.top && !(bounds == RectL{})) {
    return {static_cast<double>(bounds.left), static_cast<double>(bounds.top),
            double{1} * bounds.right - bounds.left + 1, double{1} * bounds.bottom - bounds.top + 1};
  }
  return {0, 0, static_cast<double>(header.device.x), static_cast<double>(header.device.y)};
}

Transform FitFrame(const MetafileHeader& header, SizeL page) {
  const FrameRect frame = FrameOf(header);
  const Physical size = SizeInMillimetres(header, frame);
  const double scale = std::min(page.x / size.width, page.y / size.height);
  const double width = size.width * scale;
  const double height = size.height * scale;
  return MapFrame(frame, width, height, {(page.x - width) / 2, (page.y - height) / 2});
}

Transform ActualSize(const MetafileHeader& header, uint32_t dpi) {
  const FrameRect frame = FrameOf(header);
  const Physical size = SizeInMillimetres(header, frame);
  const double scale = dpi / kMillimetresPerInch;
  return MapFrame(frame, size.width * scale, size.height * scale, {});
}

}  // namespace quillo::host::emf
