#include "host/engine/services/surfaces.h"

#include <algorithm>
#include <cstring>

#include "base/arithmetic.h"
#include "base/dib.h"
#include "host/engine/services/guard.h"
#include "host/engine/services/handle_table.h"

namespace quillo::host {
namespace {

HandleTable<HDEV, EngineDevice*>& Devices() {
  static HandleTable<HDEV, EngineDevice*> devices;
  return devices;
}

HandleTable<HSURF, Surface>& Surfaces() {
  static HandleTable<HSURF, Surface> surfaces;
  return surfaces;
}

/// Writes `count` pixels of `bits` bits each, starting with pixel `first` of the row.
void FillRow(std::byte* row, LONG first, LONG count, ULONG bits, ULONG colour) {
  if (bits >= 8) {
    const size_t bytes = bits / 8;
    for (LONG i = 0; i < count; ++i) std::memcpy(row + (first + i) * bytes, &colour, bytes);
    return;
  }
  const ULONG mask = (1u << bits) - 1;
  for (LONG x = first; x < first + count; ++x) {
    const ULONG bit = static_cast<ULONG>(x) * bits;
    const ULONG shift = 8 - bits - bit % 8;
    std::byte& byte = row[bit / 8];
    byte = (byte & ~static_cast<std::byte>(mask << shift)) |
           static_cast<std::byte>((colour & mask) << shift);
  }
}

}  // namespace

ULONG BitsPerPixel(ULONG format) {
  constexpr ULONG kBits[] = {0, 1, 4, 8, 16, 24, 32, 4, 8};
  return format < std::size(kBits) ? kBits[format] : 0;
}

EngineDevice::EngineDevice() : handle_(Devices().Add(std::make_unique<EngineDevice*>(this))) {}

EngineDevice::~EngineDevice() { Devices().Remove(handle_); }

EngineDevice* EngineDevice::Find(HDEV handle) {
  EngineDevice* const* device = Devices().Find(handle);
  return device != nullptr ? *device : nullptr;
}

Surface::Surface(SIZEL size, ULONG format, bool top_down, void* bits, ULONG byte_count,
                 LONG row_bytes)
    : SURFOBJ{} {
  sizlBitmap = size;
  cjBits = byte_count;
  pvBits = bits;
  iBitmapFormat = format;
  iType = STYPE_BITMAP;
  fjBitmap = top_down ? BMF_TOPDOWN : 0;
  if (format == BMF_4RLE || format == BMF_8RLE) return;  // no rows to step over
  lDelta = top_down ? row_bytes : -row_bytes;
  pvScan0 = static_cast<std::byte*>(bits) +
            (top_down ? 0 : static_cast<size_t>(row_bytes) * static_cast<size_t>(size.cy - 1));
}

void Surface::PagesDeleter::operator()(void* pages) const { VirtualFree(pages, 0, MEM_RELEASE); }

std::unique_ptr<Surface> Surface::Allocate(SIZEL size, ULONG format, bool top_down,
                                           LONG row_bytes) {
  const uint64_t smallest =
      size.cx > 0 ? DibStride(static_cast<uint64_t>(size.cx), BitsPerPixel(format)) : 0;
  if (row_bytes == 0 && smallest <= MAXLONG) row_bytes = static_cast<LONG>(smallest);
  const auto bytes = CheckedMultiply<LONG>(row_bytes, size.cy);
  if (size.cy <= 0 || smallest == 0 || row_bytes < 0 ||
      static_cast<uint64_t>(row_bytes) < smallest || row_bytes % 4 != 0 || !bytes ||
      format < BMF_1BPP || format > BMF_32BPP) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  std::unique_ptr<void, PagesDeleter> pages(
      VirtualAlloc(nullptr, static_cast<size_t>(*bytes), MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
  if (pages == nullptr) return nullptr;
  auto surface = std::make_unique<Surface>(size, format, top_down, pages.get(),
                                           static_cast<ULONG>(*bytes), row_bytes);
  surface->pages_ = std::move(pages);
  return surface;
}

Surface* FindSurface(HSURF handle) { return Surfaces().Find(handle); }

size_t LiveSurfaceCount() { return Surfaces().Size(); }

}  // namespace quillo::host

using namespace quillo::host;

extern "C" HBITMAP APIENTRY EngCreateBitmap(SIZEL sizl, LONG lWidth, ULONG iFormat, FLONG fl,
                                            PVOID pvBits) {
  return Service<HBITMAP>("EngCreateBitmap", nullptr, [&]() -> HBITMAP {
    std::unique_ptr<Surface> surface;
    if (pvBits == nullptr) {
      surface = Surface::Allocate(sizl, iFormat, (fl & BMF_TOPDOWN) != 0, lWidth);
    } else if (const auto bytes = quillo::CheckedMultiply<LONG>(lWidth, sizl.cy);
               bytes && *bytes > 0) {
      surface = std::make_unique<Surface>(sizl, iFormat, (fl & BMF_TOPDOWN) != 0, pvBits,
                                          static_cast<ULONG>(*bytes), lWidth);
    }
    if (surface == nullptr) return nullptr;
    surface->fjBitmap |= static_cast<USHORT>(fl);
    Surface& added = *surface;
    added.hsurf = Surfaces().Add(std::move(surface));
    return reinterpret_cast<HBITMAP>(added.hsurf);
  });
}

extern "C" WINBOOL APIENTRY EngAssociateSurface(HSURF hsurf, HDEV hdev, FLONG flHooks) {
  return Service<WINBOOL>("EngAssociateSurface", FALSE, [&]() -> WINBOOL {
    Surface* surface = FindSurface(hsurf);
    const EngineDevice* device = EngineDevice::Find(hdev);
    if (surface == nullptr || device == nullptr) return FALSE;
    surface->hdev = hdev;
    surface->dhpdev = device->dhpdev;
    surface->hooks = flHooks;
    return TRUE;
  });
}

extern "C" WINBOOL APIENTRY EngDeleteSurface(HSURF hsurf) {
  return Surfaces().Remove(hsurf) ? TRUE : FALSE;
}

extern "C" WINBOOL APIENTRY EngEraseSurface(SURFOBJ* pso, RECTL* prcl, ULONG iColor) {
  return Service<WINBOOL>("EngEraseSurface", FALSE, [&]() -> WINBOOL {
    if (pso == nullptr || prcl == nullptr || pso->pvScan0 == nullptr) return FALSE;
    const LONG left = std::max<LONG>(prcl->left, 0);
    const LONG right = std::min(prcl->right, pso->sizlBitmap.cx);
    const LONG bottom = std::min(prcl->bottom, pso->sizlBitmap.cy);
    if (right <= left) return TRUE;
    for (LONG y = std::max<LONG>(prcl->top, 0); y < bottom; ++y) {
      std::byte* row = static_cast<std::byte*>(pso->pvScan0) + ptrdiff_t{y} * pso->lDelta;
      FillRow(row, left, right - left, BitsPerPixel(pso->iBitmapFormat), iColor);
    }
    return TRUE;
  });
}
