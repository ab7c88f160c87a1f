#include "base/ddi.h"

#include <cstdint>

#include "base/dib.h"
#include "driver/callbacks.h"
#include "driver/device/device.h"

namespace quillo {

namespace {

/// The drawing entries of the driver's table that take a surface.
constexpr FLONG kHooks = HOOK_BITBLT | HOOK_STRETCHBLT | HOOK_TEXTOUT | HOOK_PAINT |
                         HOOK_STROKEPATH | HOOK_FILLPATH | HOOK_STROKEANDFILLPATH | HOOK_LINETO |
                         HOOK_COPYBITS | HOOK_ALPHABLEND;
static_assert(kHooks == 0x000105FB);

/// Bytes of a 24-bit row, padded to whole 32-bit words.
LONG RowBytes(LONG width) { return static_cast<LONG>(DibStride(static_cast<uint64_t>(width), 24)); }

}  // namespace

HSURF APIENTRY DrvEnableSurface(DHPDEV handle) noexcept {
  DEVICE_PDEV* device = FindDevice(handle);
  if (device == nullptr) return nullptr;
  const Extent printable = device->sheet.pixels.printable;
  device->surface_size = {printable.width, printable.height};
  const HBITMAP bitmap = EngCreateBitmap(device->surface_size, RowBytes(printable.width), BMF_24BPP,
                                         BMF_USERMEM, nullptr);
  device->surface = device->surface_bitmap = reinterpret_cast<HSURF>(bitmap);
  if (device->surface == nullptr) return nullptr;
  if (!EngAssociateSurface(device->surface, device->engine_device, kHooks)) {
    EngDeleteSurface(device->surface);
    device->surface = nullptr;
    return nullptr;
  }
  return device->surface;
}

VOID APIENTRY DrvDisableSurface(DHPDEV handle) noexcept {
  DEVICE_PDEV* device = FindDevice(handle);
  if (device == nullptr || device->surface == nullptr) return;
  EngDeleteSurface(device->surface);
  device->surface = nullptr;
}

}  // namespace quillo
