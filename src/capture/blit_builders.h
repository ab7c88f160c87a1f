#pragma once

#include "base/ddi.h"

#include "capture/records/payloads.h"
#include "driver/device/device.h"

// Builders of the records that carry bitmaps; see builders.h. The offsets in the payloads are
// filled here. Nothing is recorded of a surface that has no packed size.
//
// What happens to a surface that has a size but cannot be packed (it has no bits) differs from
// record to record, and is meant to: REC_BITBLT and REC_SETDIBITSTODEVICE are emitted with zeros in
// the bitmap's place, the others are dropped.
namespace quillo {

/// A surface and the object that translates its colours (null = none).
struct BlitSource {
  const SURFOBJ* surface;
  XLATEOBJ* translation;
};

void EmitBitBlt(DEVICE_PDEV& device, records::BitBltPayload blit, const BlitSource& source);
void EmitSetDibitsToDevice(DEVICE_PDEV& device, records::SetDibitsPayload blit,
                           const BlitSource& source);
void EmitAlphaBlend(DEVICE_PDEV& device, records::AlphaBlendPayload blit, const BlitSource& source);
/// The mask is packed without colour translation.
void EmitMaskBlt(DEVICE_PDEV& device, records::MaskBltPayload blit, const BlitSource& source,
                 const SURFOBJ* mask);
/// Streams the bitmap straight from the surface, so that large ones are not copied twice.
void EmitStretchBlt(DEVICE_PDEV& device, records::StretchBltPayload blit, const BlitSource& source);

}  // namespace quillo
