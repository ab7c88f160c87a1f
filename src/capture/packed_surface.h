#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <span>

#include "driver/device/device.h"

// Surfaces of the engine as packed bitmaps.
namespace quillo {

/// The entries of a translation object's vector; a null span when there is no object or it has no
/// vector.
std::span<const ULONG> TranslationVector(XLATEOBJ* translation);

/// Bytes of the packed bitmap, or 0 when there is no surface or its format cannot be packed.
uint32_t PackedBitmapSize(const SURFOBJ* surface);

/// Fills `destination`, `size` zero bytes, with the packed bitmap. Without a destination it only
/// puts the size into `size`. False with size 0 when the surface cannot be packed or has no bits;
/// false when `size` is not its packed size. `device` (null = none) gives the resolution.
bool SurfaceToPackedBitmap(const DEVICE_PDEV* device, const SURFOBJ* surface, XLATEOBJ* translation,
                           void* destination, uint32_t& size);

/// Streams the packed bitmap of a surface that can be packed into a record whose header was
/// emitted, without a copy of the bits.
void EmitPackedBitmap(DEVICE_PDEV& device, const SURFOBJ& surface, XLATEOBJ* translation);

/// Whether SurfaceToPackedBitmap and EmitPackedBitmap find something to pack.
bool CanBePacked(const SURFOBJ* surface);

}  // namespace quillo
