#include "imaging/painting/paint.h"

#include "imaging/painting/device_colours.h"
#include "imaging/painting/painters.h"
#include "imaging/pixels/orientation.h"

namespace quillo::imaging {
namespace {

/// Intersects `rectangle` with `clip` where there is one; false when nothing is left.
bool Clip(const RECT* clip, RECT* rectangle) {
  if (clip == nullptr) return true;
  const RECT whole = *rectangle;
  return IntersectRect(rectangle, &whole, clip) != FALSE;
}

}  // namespace

int Paint(HDC dc, BitmapHandle* record, const PaintArguments& arguments) {
  if (record == nullptr) return kInvalidArgument;
  if ((record->flags & kAllocated) == 0) return kNoStorage;
  if (!IsStructureSize(record->structure_size)) return kWrongStructureSize;
  if (dc == nullptr || arguments.destination == nullptr) return kInvalidArgument;
  if (!IsValid(*record)) return kInvalidBitmap;

  const RECT bounds{0, 0, static_cast<LONG>(record->width), static_cast<LONG>(record->height)};
  PaintJob job{};
  job.dc = dc;
  job.raster_operation = arguments.raster_operation;
  job.source = arguments.source != nullptr ? *arguments.source : bounds;
  job.destination = *arguments.destination;
  if (!Clip(arguments.source_clip, &job.source) ||
      !Clip(arguments.destination_clip, &job.destination) || !Clip(&bounds, &job.source)) {
    return kSuccess;
  }
  if (job.destination.right == job.destination.left ||
      job.destination.bottom == job.destination.top) {
    return kSuccess;
  }
  const LockScope lock(*record);
  if (lock.Result() != kSuccess) return lock.Result();
  if (Orientation::SwapsAxes(record->view_perspective)) {
    job.source = {job.source.top, job.source.left, job.source.bottom, job.source.right};
  }
  job.device_depth = DeviceDepth(dc);
  job.method = PaintMethodFor(job.device_depth, *record);
  return RunPainter(job, *record);
}

}  // namespace quillo::imaging
