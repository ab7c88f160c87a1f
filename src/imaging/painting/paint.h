#pragma once

#include "base/windows.h"

#include <cstdint>

#include "imaging/bitmap/bitmap_handle.h"

namespace quillo::imaging {

/// Draws the bitmap on `dc` with a ternary raster operation, by the method that the bitmap, the
/// device and the thread's display-mode flags ask for (paint_method.h).
///
/// `source` (null: the whole bitmap) counts from the top left of the picture; of a bitmap whose
/// view has its axes swapped, it counts rows along x and columns along y. Both rectangles are
/// intersected with their clips where one is given, the source with the bitmap too; what is left of
/// the source then fills what is left of the destination.
/// 1, also when nothing is visible; -2 (no storage), -789, -13 (no dc or no destination), -1486 (a
/// record that contradicts itself), -1 and other failures.
int Paint(HDC dc, BitmapHandle* record, const RECT* source, const RECT* source_clip,
          const RECT* destination, const RECT* destination_clip, uint32_t raster_operation);

/// A palette suited to painting the bitmap on `dc`, which the caller deletes; null when none is
/// needed, or on failure.
HPALETTE CreatePaintPalette(HDC dc, const BitmapHandle* record);

}  // namespace quillo::imaging
