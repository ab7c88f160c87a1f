#pragma once

#include "imaging/bitmap/bitmap_handle.h"

namespace quillo::imaging {

// Flags of both operations; without any, nearest neighbour. Playback uses none; the others are for
// callers that want smooth pictures.
constexpr uint32_t kResizeArea = 1;      // 1-bit bitmaps: area average
constexpr uint32_t kResizeResample = 2;  // resampling filter
constexpr uint32_t kResizeSmooth = 4;    // resampling where nothing grows, else enlarging filter

/// Resizes a bitmap in place; the record keeps its identity and gets new storage. Progress goes to
/// the thread's status callback. kResizeArea counts for black and white bitmaps only, where it
/// overrides kResizeResample.
/// kSuccess; kInvalidArgument (nothing allocated, a size below 1), kWrongStructureSize,
/// kOutOfMemory, another failure, or the stopping code of the callback, all of which leave the
/// bitmap unchanged.
int SizeBitmap(BitmapHandle* record, int32_t new_width, int32_t new_height, uint32_t flags);

/// Scales `source` into `destination`, which has storage, the same depth and the same colour order.
/// kSuccess; kNoStorage, kInvalidArgument (they differ), kOutOfMemory, or the stopping code of the
/// callback, which leaves the destination partly written.
int ResizeInto(BitmapHandle* source, BitmapHandle* destination, uint32_t flags);

}  // namespace quillo::imaging
