#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <optional>
#include <span>

#include "capture/records/packed_bitmap.h"
#include "driver/device/device.h"

namespace quillo {

/// The entries of a translation object's vector; a null span when there is no object or it has no
/// vector.
std::span<const ULONG> TranslationVector(XLATEOBJ* translation);

/// A surface of the engine as the packed bitmap that it becomes: format and size are determined
/// once, here. The surface and the translation object must outlive it.
class PackedSurface {
 public:
  /// `translation` may be null: a 1-bit surface is then packed as a mask.
  PackedSurface(const SURFOBJ* surface, XLATEOBJ* translation);

  /// Bytes of the packed bitmap; 0 without a surface, for a format that cannot be packed, and for
  /// more pixels or missing rows than records carry.
  [[nodiscard]] uint32_t Size() const { return size_; }
  /// Whether there are pixels to pack. A surface without bits still has a size.
  [[nodiscard]] bool HasBits() const { return size_ != 0 && surface_->pvBits != nullptr; }

  /// Fills `place` with the packed bitmap. False, and nothing written, without bits and when
  /// `place` is not Size() bytes. `device` supplies the resolution and may be null.
  bool Pack(const DEVICE_PDEV* device, MutableBytes place) const;

  /// Streams the packed bitmap into a record whose header was emitted, without copying the bits.
  /// Only with bits.
  void Emit(DEVICE_PDEV& device) const;

 private:
  /// Header and colour table.
  [[nodiscard]] records::DibInfo Head(const DEVICE_PDEV* device) const;

  const SURFOBJ* surface_;
  XLATEOBJ* translation_;
  std::optional<records::SurfaceFormat> format_;
  records::SurfaceBits bits_ = {};
  uint32_t size_ = 0;
};

// The same as operations on a surface, for callers that hold no PackedSurface; the hooks do.

/// PackedSurface::Size of a surface.
uint32_t PackedBitmapSize(const SURFOBJ* surface);

/// Packs `surface` into `destination`, `size` bytes. Without a destination it only sets `size`.
/// False with size 0 when the surface cannot be packed or has no bits; false when `size` is not the
/// packed size, which it then becomes.
bool SurfaceToPackedBitmap(const DEVICE_PDEV* device, const SURFOBJ* surface, XLATEOBJ* translation,
                           void* destination, uint32_t& size);

}  // namespace quillo
