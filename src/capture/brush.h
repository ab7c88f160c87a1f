#pragma once

#include "base/ddi.h"

#include <cstdint>

#include "capture/records/payloads.h"
#include "driver/device/device.h"

namespace quillo {

/// `iSolidColor` of brushes that have a hatch or a pattern instead.
inline constexpr ULONG kNoSolidColour = 0xFFFFFFFF;

/// Hatch indexes (HS_*) are below this; any other number means a pattern.
inline constexpr uint32_t kHatchCount = 6;

/// What DrvRealizeBrush makes of a brush, in memory that the engine keeps with it. The pattern, a
/// packed bitmap, follows these fields directly.
///
/// Compatibility: the block is 8 bytes longer than fields and pattern; they stay zero.
struct RealisedBrush {
  uint32_t total_size;        // kRealisedBrushSize and the pattern
  uint32_t foreground;        // COLORREF
  uint32_t background;        // device colour
  uint32_t hatch_or_pattern;  // hatch index, or bytes of the pattern
};
inline constexpr uint32_t kRealisedBrushSize = 24;

/// Records the background colour of a brush's realised form and then the brush. A brush that has
/// neither a solid colour nor a realised form is realised through the engine. Nothing is recorded
/// for null and for a brush that cannot be realised.
void WriteBrush(DEVICE_PDEV& device, BRUSHOBJ* brush, records::BrushUsage usage);

}  // namespace quillo
