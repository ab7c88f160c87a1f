#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <vector>

#include "host/cairo/cairo_owners.h"
#include "host/engine/drawing.h"

// Pictures as cairo takes them. Equal ones get the same name, so that a file stores them once.
// Rectangles lie inside their picture, which is not run-length coded. Throws std::bad_alloc.
namespace quillo::host::pdf {

/// The colours of a rectangle without transparency.
CairoSurface OpaquePicture(const BitmapSource& picture, const RECTL& rect);

/// Pixels 0xAARRGGBB, the colours multiplied by the alpha; rows from the top.
CairoSurface AlphaPicture(std::vector<uint32_t> pixels, LONG width, LONG height);

/// The set bits of a rectangle of a picture of one bit a pixel.
CairoSurface BitMask(const BitmapSource& picture, const RECTL& rect);

}  // namespace quillo::host::pdf
