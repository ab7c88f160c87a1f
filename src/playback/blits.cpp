#include "base/windows.h"

#include <bit>

#include "playback/actions.h"
#include "playback/rectangles.h"
#include "playback/source_bitmap.h"

// Blits onto the page DC. A source that cannot be prepared draws nothing.
namespace quillo {

using namespace records;

int32_t PlayPatBlt(PlaybackContext& context, Bytes payload) {
  const auto record = LoadOrZero<PatBltPayload>(payload);
  const Rect& to = record.destination;
  return PatBlt(context.page_dc, to.left, to.top, Width(to), Height(to), record.rop);
}

int32_t PlayBitBlt(PlaybackContext& context, Bytes payload) {
  const auto record = LoadOrZero<BitBltPayload>(payload);
  SourceBitmap source;
  if (!source.Load(context, payload, record.source_offset)) return 0;
  const HDC source_dc = source.Present();
  if (source_dc == nullptr) return 0;

  const Rect& to = record.destination;
  const Point& from = record.source_origin;
  return BitBlt(context.page_dc, to.left, to.top, Width(to), Height(to), source_dc, from.x, from.y,
                record.rop);
}

// Compatibility: always copies, whatever raster operation the captured call had, and leaves colour
// adjustment and stretch mode set on the page DC; kept for pages.
int32_t PlayStretchBlt(PlaybackContext& context, Bytes payload) {
  const auto record = LoadOrZero<StretchBltPayload>(payload);
  SourceBitmap source;
  if (!source.Load(context, payload, record.source_offset) ||
      !source.Reduce(context.job.bitmap_limits)) {
    return 0;
  }
  const HDC source_dc = source.Present();
  if (source_dc == nullptr) return 0;

  if ((record.has_adjustment & 1) != 0) {
    static_assert(sizeof(COLORADJUSTMENT) == sizeof record.adjustment);
    const auto adjustment = std::bit_cast<COLORADJUSTMENT>(record.adjustment);
    SetColorAdjustment(context.page_dc, &adjustment);
  }
  SetStretchBltMode(context.page_dc, static_cast<int>(record.stretch_mode));
  const Rect& to = record.destination;
  const Rect& from = record.source;
  return StretchBlt(context.page_dc, to.left, to.top, Width(to), Height(to), source_dc,
                    source.Scaled(from.left), source.Scaled(from.top), source.Scaled(Width(from)),
                    source.Scaled(Height(from)), SRCCOPY);
}

int32_t PlayAlphaBlend(PlaybackContext& context, Bytes payload) {
  const auto record = LoadOrZero<AlphaBlendPayload>(payload);
  SourceBitmap source;
  if (!source.Load(context, payload, record.source_offset) ||
      !source.Reduce(context.job.bitmap_limits)) {
    return 0;
  }
  const HDC source_dc = source.Present();
  if (source_dc == nullptr) return 0;

  const Rect& to = record.destination;
  const Rect& from = record.source;
  return AlphaBlend(context.page_dc, to.left, to.top, Width(to), Height(to), source_dc,
                    source.Scaled(from.left), source.Scaled(from.top), source.Scaled(Width(from)),
                    source.Scaled(Height(from)),
                    std::bit_cast<BLENDFUNCTION>(record.blend_function));
}

}  // namespace quillo
