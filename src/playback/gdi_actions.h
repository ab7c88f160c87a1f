#pragma once

#include "base/windows.h"

#include "base/arithmetic.h"
#include "base/system_owners.h"
#include "playback/actions.h"

// Actions that make one GDI call on the page DC, coordinates and values unchanged.
namespace quillo {

/// Makes a call without arguments. 1 whatever GDI answers.
template <auto kCall>
int32_t PlayCall(PlaybackContext& context, Bytes) {
  kCall(context.page_dc);
  return 1;
}

/// Makes a call with the record's one value. 1 whatever GDI answers.
template <typename Value, auto kCall>
int32_t PlayValue(PlaybackContext& context, Bytes payload) {
  kCall(context.page_dc, LoadOrZero<Value>(payload));
  return 1;
}

/// Draws a shape inscribed in the record's rectangle. GDI's answer.
template <auto kCall>
int32_t PlayShape(PlaybackContext& context, Bytes payload) {
  const auto r = LoadOrZero<records::Rect>(payload);
  return kCall(context.page_dc, r.left, r.top, r.right, r.bottom);
}

/// Draws with the record's counted points. GDI's answer; 0 when the payload does not hold as many
/// points as it announces.
template <typename Count, BOOL(WINAPI* kCall)(HDC, const POINT*, Count)>
int32_t PlayPoints(PlaybackContext& context, Bytes payload) {
  static_assert(sizeof(POINT) == sizeof(records::Point));
  const auto count = LoadOrZero<uint32_t>(payload);
  const size_t size = size_t{count} * sizeof(POINT);
  if (!RangeFits(payload.size(), records::kPolyPointsOffset, size)) return 0;

  const std::byte* points = payload.data() + records::kPolyPointsOffset;
  HeapBlock copy;
  if (reinterpret_cast<uintptr_t>(points) % alignof(POINT) != 0) {
    copy = HeapBlock(size, context.job.heap, 0);
    if (!copy) return 0;
    std::memcpy(copy.Get(), points, size);
    points = copy.As<std::byte>();
  }
  return kCall(context.page_dc, reinterpret_cast<const POINT*>(points), static_cast<Count>(count));
}

}  // namespace quillo
