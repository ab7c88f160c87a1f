#include "imaging/lifecycle/dib_section.h"

#include <algorithm>
#include <utility>

#include "base/dib.h"
#include "base/gdi_owners.h"
#include "base/system_owners.h"
#include "imaging/lifecycle/upright.h"
#include "imaging/storage/storage.h"

namespace quillo::imaging {
namespace {

/// A header with room for 256 colours or three masks.
struct DibInfo {
  BITMAPINFOHEADER header;
  union {
    RGBQUAD colours[256];
    DWORD masks[3];
  };
};

bool IsPresentable(const BitmapHandle& record) {
  return IsStructureSize(record.structure_size) && IsValid(record) &&
         record.colour_order != kOrderGrey && IsDibDepth(record.bits_per_pixel) &&
         std::max(record.width, record.height) <= INT32_MAX &&  // headers count in int32_t
         (record.flags & (kTiled | kCallerMemory)) == 0;
}

DibInfo DescribeDib(const BitmapHandle& record) {
  DibInfo info{};
  const auto height = static_cast<LONG>(record.height);
  info.header.biSize = sizeof(BITMAPINFOHEADER);
  info.header.biWidth = static_cast<LONG>(record.width);
  info.header.biHeight = record.view_perspective == kBottomRowFirst ? height : -height;
  info.header.biPlanes = 1;
  info.header.biBitCount = static_cast<WORD>(record.bits_per_pixel);
  info.header.biSizeImage = static_cast<DWORD>(record.data_size);
  if (record.bits_per_pixel == 32) {
    info.header.biCompression = BI_BITFIELDS;
    info.masks[0] = 0xFF0000;
    info.masks[1] = 0xFF00;
    info.masks[2] = 0xFF;
    return info;
  }
  info.header.biCompression = BI_RGB;
  std::ranges::transform(PaletteOf(record), info.colours, [](PaletteEntry entry) {
    return RGBQUAD{entry.blue, entry.green, entry.red, 0};
  });
  return info;
}

/// A section over the record's pixels that the DIB section can own: a duplicate of the record's
/// section, or a new mapping of its temporary file.
KernelHandle OpenSection(const BitmapHandle& record) {
  if ((record.flags & kDisk) != 0) {
    return KernelHandle(
        CreateFileMappingW(record.storage_handle, nullptr, PAGE_READWRITE, 0, 0, nullptr));
  }
  HANDLE section = nullptr;
  DuplicateHandle(GetCurrentProcess(), record.storage_handle, GetCurrentProcess(), &section, 0,
                  FALSE, DUPLICATE_SAME_ACCESS);
  return KernelHandle(section);
}

CreatedDc CreateScreenCompatibleDc() {
  const ScreenDc screen(GetDC(nullptr));
  return CreatedDc(CreateCompatibleDC(screen.Get()));
}

/// Closes the section of a DIB section. Asks for it once more when that fails: nobody else knows
/// it.
void CloseSection(HBITMAP bitmap) {
  DIBSECTION shared{};
  for (int attempt = 0; attempt < 2; ++attempt) {
    if (GetObjectW(bitmap, sizeof(shared), &shared) != sizeof(shared)) continue;
    const KernelHandle section(shared.dshSection);
    return;
  }
}

}  // namespace

HDC PresentAsDibSection(BitmapHandle* record) {
  if (record == nullptr || !IsPresentable(*record)) return nullptr;
  if (record->view_perspective != kTopRowFirst && record->view_perspective != kBottomRowFirst &&
      TurnUpright(*record) != kSuccess) {
    return nullptr;
  }
  CreatedDc dc = CreateScreenCompatibleDc();
  if (!dc || MoveToSection(*record) != kSuccess) return nullptr;
  KernelHandle section = OpenSection(*record);
  if (!section) return nullptr;
  const DibInfo info = DescribeDib(*record);
  void* bits = nullptr;
  Bitmap bitmap(CreateDIBSection(dc.Get(), reinterpret_cast<const BITMAPINFO*>(&info),
                                 DIB_RGB_COLORS, &bits, section.Get(), record->view_offset));
  if (!bitmap || SelectObject(dc.Get(), bitmap.Get()) == nullptr) return nullptr;
  // From here on the DC owns all three; ReleaseDibSectionDc finds them through it.
  static_cast<void>(section.Detach());
  static_cast<void>(bitmap.Detach());
  return dc.Detach();
}

void ReleaseDibSectionDc(HDC dc) {
  if (dc == nullptr) return;
  // Freed from the last to the first: the stand-in has to outlive the DC that it is selected in.
  const Bitmap stand_in(CreateBitmap(1, 1, 1, 1, nullptr));
  CreatedDc owned_dc(dc);
  // The DIB section must leave the DC before it is deleted; deleting the DC takes it out, too.
  Bitmap bitmap(static_cast<HBITMAP>(stand_in ? SelectObject(dc, stand_in.Get()) : nullptr));
  if (!bitmap) {
    bitmap.Reset(static_cast<HBITMAP>(GetCurrentObject(dc, OBJ_BITMAP)));
    owned_dc.Reset();
  }
  CloseSection(bitmap.Get());
}

}  // namespace quillo::imaging
