#pragma once

#include <cstdint>

#include "base/bytes.h"
#include "host/engine/drawing.h"

namespace quillo::host {

/// Where a picture's first row and column belong, as EXIF and TIFF number it: 1 top and left, 2 top
/// and right, 3 bottom and right, 4 bottom and left; 5 left and top, 6 right and top, 7 right and
/// bottom, 8 left and bottom.
using Orientation = uint16_t;
inline constexpr Orientation kUpright = 1;

/// Whether a picture's width is the height of what is stored.
constexpr bool SwapsSides(Orientation orientation) { return orientation >= 5; }

/// The orientation that a JPEG, TIFF or PNG file states for a frame, counted from 0; kUpright when
/// it states none or an invalid one. Read by hand: the metadata reader of Wine's codecs (8.0) knows
/// it in TIFF files only.
Orientation OrientationOf(Bytes file, uint32_t frame);

/// Turns a picture of 24 bits a pixel, rows from the top, upright. By hand: Wine's flip-rotator
/// (8.0) exchanges rows and can do nothing else.
BitmapSource TurnUpright(BitmapSource picture, Orientation orientation);

}  // namespace quillo::host
