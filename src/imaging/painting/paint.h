#pragma once

#include "base/windows.h"

#include <cstdint>

#include "imaging/bitmap/bitmap_handle.h"

namespace quillo::imaging {

/// What Paint draws, and where. Null rectangles and clips stand for everything; only `destination`
/// is required.
struct PaintArguments {
  const RECT* source = nullptr;       // pixels from the top left of the picture, as it is seen
  const RECT* source_clip = nullptr;  // likewise
  const RECT* destination = nullptr;  // logical units of the DC
  const RECT* destination_clip = nullptr;
  uint32_t raster_operation = SRCCOPY;  // ternary
};

/// Draws the bitmap on `dc`, by the method that the bitmap, the device and the thread's
/// display-mode flags ask for (paint_method.h).
///
/// In the source rectangles of a bitmap whose view has its axes swapped, rows count along x and
/// columns along y. Both rectangles are intersected with their clips, the source with the bitmap
/// too; what is left of the source then fills what is left of the destination.
///
/// kSuccess, also when nothing is visible; kNoStorage, kWrongStructureSize, kInvalidArgument (no
/// record, dc or destination), kInvalidBitmap, kOutOfMemory, or a failure of the storage.
int Paint(HDC dc, BitmapHandle* record, const PaintArguments& arguments);

/// A palette suited to painting the bitmap on `dc`, which the caller deletes; null when none is
/// needed, or on failure.
HPALETTE CreatePaintPalette(HDC dc, const BitmapHandle* record);

}  // namespace quillo::imaging
