#include "base/windows.h"

#include "base/arithmetic.h"
#include "base/system_owners.h"
#include "playback/actions.h"

// Paths, clip paths, lines and filled shapes: one GDI call each, coordinates unchanged.
namespace quillo {
namespace {

using namespace records;
static_assert(sizeof(POINT) == sizeof(Point));

// Plays a record of counted points. Points at an address that GDI cannot read from are copied to
// the job's heap first. 0 when the payload does not hold as many points as it announces.
template <typename Count>
int32_t PlayPoints(PlaybackContext& context, Bytes payload,
                   BOOL(WINAPI* draw)(HDC, const POINT*, Count)) {
  const auto count = LoadOrZero<uint32_t>(payload);
  const size_t size = size_t{count} * sizeof(POINT);
  if (!RangeFits(payload.size(), kPolyPointsOffset, size)) return 0;

  const std::byte* points = payload.data() + kPolyPointsOffset;
  HeapBlock copy;
  if (reinterpret_cast<uintptr_t>(points) % alignof(POINT) != 0) {
    copy = HeapBlock(size, context.job.heap, 0);
    if (!copy) return 0;
    std::memcpy(copy.Get(), points, size);
    points = copy.As<std::byte>();
  }
  return draw(context.page_dc, reinterpret_cast<const POINT*>(points), static_cast<Count>(count));
}

}  // namespace

int32_t PlayBeginPath(PlaybackContext& context, Bytes) {
  BeginPath(context.page_dc);
  return 1;
}

int32_t PlayEndPath(PlaybackContext& context, Bytes) {
  EndPath(context.page_dc);
  return 1;
}

int32_t PlayCloseFigure(PlaybackContext& context, Bytes) {
  CloseFigure(context.page_dc);
  return 1;
}

int32_t PlayStrokePath(PlaybackContext& context, Bytes) {
  StrokePath(context.page_dc);
  return 1;
}

int32_t PlayFillPath(PlaybackContext& context, Bytes) {
  FillPath(context.page_dc);
  return 1;
}

int32_t PlayStrokeAndFillPath(PlaybackContext& context, Bytes) {
  StrokeAndFillPath(context.page_dc);
  return 1;
}

// Always replaces the clip region, never combines with it.
int32_t PlaySelectClipPath(PlaybackContext& context, Bytes) {
  SelectClipPath(context.page_dc, RGN_COPY);
  return 1;
}

int32_t PlayMoveTo(PlaybackContext& context, Bytes payload) {
  const auto point = LoadOrZero<Point>(payload);
  MoveToEx(context.page_dc, point.x, point.y, nullptr);
  return 1;
}

int32_t PlayLineTo(PlaybackContext& context, Bytes payload) {
  const auto point = LoadOrZero<Point>(payload);
  LineTo(context.page_dc, point.x, point.y);
  return 1;
}

int32_t PlayPolyBezier(PlaybackContext& context, Bytes payload) {
  return PlayPoints(context, payload, PolyBezier);
}

int32_t PlayPolyBezierTo(PlaybackContext& context, Bytes payload) {
  return PlayPoints(context, payload, PolyBezierTo);
}

int32_t PlayPolyline(PlaybackContext& context, Bytes payload) {
  return PlayPoints(context, payload, Polyline);
}

int32_t PlayPolylineTo(PlaybackContext& context, Bytes payload) {
  return PlayPoints(context, payload, PolylineTo);
}

int32_t PlayEllipse(PlaybackContext& context, Bytes payload) {
  const auto r = LoadOrZero<Rect>(payload);
  return Ellipse(context.page_dc, r.left, r.top, r.right, r.bottom);
}

int32_t PlayRectangle(PlaybackContext& context, Bytes payload) {
  const auto r = LoadOrZero<Rect>(payload);
  return Rectangle(context.page_dc, r.left, r.top, r.right, r.bottom);
}

// Without a current brush GDI gets a null brush.
int32_t PlayFillRect(PlaybackContext& context, Bytes payload) {
  const auto rectangle = LoadOrZero<RECT>(payload);
  FillRect(context.page_dc, &rectangle, context.current_brush);
  return 1;
}

}  // namespace quillo
