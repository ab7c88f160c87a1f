#pragma once

#include "base/windows.h"

#include <cstdint>

#include "imaging/bitmap/bitmap_handle.h"
#include "imaging/painting/paint_method.h"

namespace quillo::imaging {

/// One painting, with its rectangles clipped.
struct PaintJob {
  HDC dc;
  RECT source;       // from the top left of the picture; not empty, inside the bitmap
  RECT destination;  // logical units of the DC; mirrored where right < left or bottom < top
  DWORD raster_operation;
  uint32_t device_depth;  // QuantizeDepth
  PaintMethod method;
};

/// Runs the painter that the method and the two sizes ask for. `record` is valid and locked.
int RunPainter(const PaintJob& job, BitmapHandle& record);

}  // namespace quillo::imaging
