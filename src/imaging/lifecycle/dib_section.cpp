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

}  // namespace

DibSectionDc PresentAsDibSection(BitmapHandle* record) {
  if (record == nullptr || !IsPresentable(*record)) return {};
  if (record->view_perspective != kTopRowFirst && record->view_perspective != kBottomRowFirst &&
      TurnUpright(*record) != kSuccess) {
    return {};
  }
  CreatedDc dc = CreateScreenCompatibleDc();
  if (!dc || MoveToSection(*record) != kSuccess) return {};
  KernelHandle section = OpenSection(*record);
  if (!section) return {};
  const DibInfo info = DescribeDib(*record);
  void* bits = nullptr;
  Bitmap bitmap(CreateDIBSection(dc.Get(), reinterpret_cast<const BITMAPINFO*>(&info),
                                 DIB_RGB_COLORS, &bits, section.Get(), record->view_offset));
  if (!bitmap || SelectObject(dc.Get(), bitmap.Get()) == nullptr) return {};
  return DibSectionDc({dc.Detach(), bitmap.Detach(), section.Detach()});
}

void DibSectionDcTraits::Release(const PresentedBitmap& presented) {
  // Freed from the last to the first. The DIB section must leave the DC before it is deleted;
  // deleting the DC takes it out, too.
  const KernelHandle section(presented.section);
  const Bitmap stand_in(CreateBitmap(1, 1, 1, 1, nullptr));
  const Bitmap bitmap(presented.bitmap);
  const CreatedDc dc(presented.dc);
  SelectObject(dc.Get(), stand_in.Get());
}

}  // namespace quillo::imaging
