#pragma once

#include "base/ddi.h"

#include "capture/records/payloads.h"
#include "driver/device/device.h"

namespace quillo {

/// Records a clip object (null = none) as a clip path. True when it recorded one.
///
/// A rectangle that contains `drawing_bounds` is left out; null bounds = always recorded.
/// `clip_bounds` (may be null; no hook needs it) receives the bounds of a recorded clip and is
/// otherwise unchanged. When the engine cannot supply a clip's outline, the drawing goes unclipped.
///
/// Compatibility: a rectangle is recorded one pixel larger on every side, as in existing streams.
bool WriteClip(DEVICE_PDEV& device, CLIPOBJ* clip, const records::Rect* drawing_bounds,
               records::Rect* clip_bounds = nullptr);

}  // namespace quillo
