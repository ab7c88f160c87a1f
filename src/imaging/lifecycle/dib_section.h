#pragma once

#include "base/windows.h"

#include "base/owner.h"
#include "imaging/bitmap/bitmap_handle.h"

namespace quillo::imaging {

/// A memory DC whose selected bitmap shares its pixels with the record; null on any failure.
/// Not for tiled storage, caller memory, grey order, or depths that GDI has no DIB of. The record
/// may change its storage or its row order, never its picture. It must outlive the DC, which
/// ReleaseDibSectionDc deletes.
HDC PresentAsDibSection(BitmapHandle* record);

/// Deletes a DC of PresentAsDibSection with its bitmap and section.
void ReleaseDibSectionDc(HDC dc);

struct DibSectionDcTraits {
  using Type = HDC;
  static constexpr Type kNull = nullptr;
  static void Release(Type dc) { ReleaseDibSectionDc(dc); }
};
using DibSectionDc = Owner<DibSectionDcTraits>;

}  // namespace quillo::imaging
