#pragma once

#include "base/ddi.h"

#include <cstdint>

#include "capture/records/payloads.h"
#include "driver/device/device.h"

namespace quillo {

enum class FillKind { kRectangle, kPath, kStrokeAndPath };

/// The mode of REC_SETROP2 that path calls record for a mix: its low four bits.
///
/// Compatibility: this makes R2_WHITE (16) 0; existing streams have it so.
constexpr uint32_t PathRop2(MIX mix) { return mix & 0x0F; }

/// Records a fill brush and its origin; either may be null.
void WriteFillBrush(DEVICE_PDEV& device, BRUSHOBJ* brush, const POINTL* brush_origin);

/// Records fill mode, brush, brush origin and mix, and then the fill itself: of `rect` (kRectangle,
/// which no hook asks for), or of the path recorded before.
void WriteFill(DEVICE_PDEV& device, uint32_t fill_mode, BRUSHOBJ* brush, const POINTL* brush_origin,
               MIX mix, const records::Rect& rect, FillKind kind);

}  // namespace quillo
