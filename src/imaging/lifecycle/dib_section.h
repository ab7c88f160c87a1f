#pragma once

#include "base/windows.h"

#include "base/owner.h"
#include "imaging/bitmap/bitmap_handle.h"

namespace quillo::imaging {

/// A bitmap as GDI shows it. GDI leaves the section to its maker.
struct PresentedBitmap {
  HDC dc = nullptr;
  HBITMAP bitmap = nullptr;  // selected into the DC
  HANDLE section = nullptr;  // that the bitmap's pixels lie in
};

struct DibSectionDcTraits {
  using Type = PresentedBitmap;
  static constexpr Type kNull{};
  static bool IsNull(const Type& presented) { return presented.dc == nullptr; }
  static void Release(const Type& presented);
};
using DibSectionDc = Owner<DibSectionDcTraits>;

/// A memory DC whose selected bitmap shares its pixels with the record; null on any failure.
/// Not for tiled storage, caller memory, grey order, or depths that GDI has no DIB of. The record
/// may change its storage or its row order, never its picture. It must outlive the DC.
DibSectionDc PresentAsDibSection(BitmapHandle* record);

}  // namespace quillo::imaging
