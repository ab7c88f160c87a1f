#pragma once

#include "base/ddi.h"

#include <cstddef>
#include <memory>

namespace quillo::host {

/// Bits of one pixel of a BMF_* format; 0 for a format without a fixed number.
ULONG BitsPerPixel(ULONG format);

/// The engine's side of an enabled device: what a driver holds as HDEV.
class EngineDevice {
 public:
  EngineDevice();
  ~EngineDevice();
  EngineDevice(const EngineDevice&) = delete;
  EngineDevice& operator=(const EngineDevice&) = delete;

  HDEV Handle() const { return handle_; }
  /// Null for a handle of no device.
  static EngineDevice* Find(HDEV handle);

  DHPDEV dhpdev = nullptr;  // the driver's own handle, after DrvEnablePDEV

 private:
  const HDEV handle_;
};

/// A bitmap that the engine manages, with the public SURFOBJ in front.
class Surface : public SURFOBJ {
 public:
  /// A surface over `bits`, which must outlive it. `row_bytes` is the distance between rows.
  Surface(SIZEL size, ULONG format, bool top_down, void* bits, ULONG byte_count, LONG row_bytes);
  Surface(const Surface&) = delete;
  Surface& operator=(const Surface&) = delete;

  /// A zeroed surface with bits of its own, which take no memory until they are touched. Null when
  /// `size`, `format` or `row_bytes` (0: the smallest) are invalid, or out of memory.
  static std::unique_ptr<Surface> Allocate(SIZEL size, ULONG format, bool top_down, LONG row_bytes);

  FLONG hooks = 0;  // HOOK_* of the drawing calls that the device handles

 private:
  struct PagesDeleter {
    void operator()(void* pages) const;
  };
  std::unique_ptr<void, PagesDeleter> pages_;  // bits of its own
};

/// The surface of a handle from EngCreateBitmap; null for any other handle.
Surface* FindSurface(HSURF handle);

/// How many surfaces a driver has created and not deleted.
size_t LiveSurfaceCount();

}  // namespace quillo::host
