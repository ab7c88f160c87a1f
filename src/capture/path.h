#pragma once

#include "base/ddi.h"

#include <cstdint>

#include "capture/records/payloads.h"
#include "driver/device/device.h"

namespace quillo {

/// Fill mode of paths that are stroked or clip.
inline constexpr uint32_t kNoFillMode = 0;

/// What became of a path: refused, recorded without anything that draws, or recorded.
enum class WrittenPath { kRefused, kEmpty, kDrawn };

/// Records a path between REC_BEGINPATH and REC_ENDPATH. `fill_mode` is kNoFillMode or the fill
/// options (FP_*).
///
/// Refused without a path, and on a curve whose number of points is not a multiple of 3, which sets
/// the last error to ERROR_INVALID_PARAMETER.
///
/// Compatibility: after a malformed curve the recorded path stays open, as in existing streams;
/// the restored state ends it.
WrittenPath WritePath(DEVICE_PDEV& device, PATHOBJ* path, uint32_t fill_mode);

/// The engine's bounds of a path in device pixels; empty without a path.
records::Rect PathBounds(PATHOBJ* path);

}  // namespace quillo
