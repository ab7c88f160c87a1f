#pragma once

#include "base/ddi.h"

#include <cstddef>
#include <memory>

namespace quillo::host {

/// Bits of one pixel of a BMF_* format; 0 for a format that has no such number.
ULONG BitsPerPixel(ULONG format);
/// Bytes of one row padded to 32-bit words; 0 when that does not fit a LONG.
LONG RowBytes(LONG width, ULONG bits_per_pixel);

/// The engine's side of an enabled device: what a driver holds as HDEV.
class EngineDevice {
 public:
  EngineDevice();
  ~EngineDevice();
  EngineDevice(const EngineDevice&) = delete;
  EngineDevice& operator=(const EngineDevice&) = delete;

  HDEV Handle() { return reinterpret_cast<HDEV>(this); }
  /// Null for a handle that is no device's.
  static EngineDevice* Find(HDEV handle);

  DHPDEV dhpdev = nullptr;  // the driver's own handle, once DrvEnablePDEV has given it
};

/// A bitmap that the engine manages, with the public SURFOBJ in front.
class Surface : public SURFOBJ {
 public:
  /// A surface over `bits`, which must outlive it. `row_bytes` is the distance of two rows.
  Surface(SIZEL size, ULONG format, bool top_down, void* bits, ULONG byte_count, LONG row_bytes);
  Surface(const Surface&) = delete;
  Surface& operator=(const Surface&) = delete;

  /// A zeroed surface with bits of its own, which take no memory before they are touched.
  /// Null when `size`, `format` or `row_bytes` (0: the smallest) make no bitmap, or memory is
  /// short.
  static std::unique_ptr<Surface> Allocate(SIZEL size, ULONG format, bool top_down, LONG row_bytes);

  FLONG hooks = 0;  // HOOK_* of the drawing calls that the device takes over

 private:
  struct PagesDeleter {
    void operator()(void* pages) const;
  };
  std::unique_ptr<void, PagesDeleter> pages_;  // bits of its own
};

/// The surface behind a handle from EngCreateBitmap; null for any other handle.
Surface* FindSurface(HSURF handle);

/// Surfaces that a driver has made and not deleted.
size_t LiveSurfaceCount();

}  // namespace quillo::host
