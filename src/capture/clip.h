#pragma once

#include "base/ddi.h"

#include "capture/records/payloads.h"
#include "driver/device/device.h"

namespace quillo {

/// Records a clip object (null = none) as a clip path. True when it did.
///
/// A rectangle that contains the drawing's bounds is left out; `drawing_bounds` null = always
/// recorded. `clip_bounds` (may be null) gets the bounds of a recorded clip, otherwise it stays as
/// it is. A clip outline that cannot be had is left out too: the drawing then goes unclipped.
bool WriteClip(DEVICE_PDEV& device, CLIPOBJ* clip, const records::Rect* drawing_bounds,
               records::Rect* clip_bounds = nullptr);

}  // namespace quillo
