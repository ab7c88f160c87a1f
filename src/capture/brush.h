#pragma once

#include "base/ddi.h"

#include <cstdint>

#include "capture/records/payloads.h"
#include "driver/device/device.h"

namespace quillo {

/// `iSolidColor` of brushes that have a hatch or a pattern instead.
inline constexpr ULONG kNoSolidColour = 0xFFFFFFFF;

/// Hatch indexes (HS_*) are below this; any other number says that the brush has a pattern.
inline constexpr uint32_t kHatchCount = 6;

/// What DrvRealizeBrush makes of a brush, in memory that the engine keeps with it. The pattern, a
/// packed bitmap, stands right behind these fields; the 8 bytes that the block is longer stay zero.
struct RealisedBrush {
  uint32_t total_size;        // kRealisedBrushSize and the pattern
  uint32_t foreground;        // COLORREF
  uint32_t background;        // device colour
  uint32_t hatch_or_pattern;  // hatch index, or bytes of the pattern
};
inline constexpr uint32_t kRealisedBrushSize = 24;

/// Records a brush, with the background colour of its realised form in front. A brush that has
/// neither a colour nor a realised form gets one through the engine; null, and a brush that cannot
/// be realised, record nothing.
void WriteBrush(DEVICE_PDEV& device, BRUSHOBJ* brush, records::BrushUsage usage);

}  // namespace quillo
