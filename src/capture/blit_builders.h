#pragma once

#include "base/ddi.h"

#include "capture/packed_surface.h"
#include "capture/records/payloads.h"
#include "driver/device/device.h"

// Builders of the records that carry bitmaps; see builders.h. They fill in the offsets of the
// payloads. A source without a packed size is not recorded.
//
// Compatibility: what becomes of a source that has a size but no bits differs from record to
// record, as in existing streams: REC_BITBLT and REC_SETDIBITSTODEVICE carry zeros in the bitmap's
// place, the others are dropped.
namespace quillo {

void EmitBitBlt(DEVICE_PDEV& device, records::BitBltPayload blit, const PackedSurface& source);
void EmitSetDibitsToDevice(DEVICE_PDEV& device, records::SetDibitsPayload blit,
                           const PackedSurface& source);
void EmitAlphaBlend(DEVICE_PDEV& device, records::AlphaBlendPayload blit,
                    const PackedSurface& source);
void EmitMaskBlt(DEVICE_PDEV& device, records::MaskBltPayload blit, const PackedSurface& source,
                 const PackedSurface& mask);
/// Streams the bitmap straight from the surface, so that a large one is not copied twice.
void EmitStretchBlt(DEVICE_PDEV& device, records::StretchBltPayload blit,
                    const PackedSurface& source);

}  // namespace quillo
