#pragma once

#include "host/engine/drawing.h"

namespace quillo::host {

/// The same pixels in fewer bits: 1, 4 or 8 with a palette, darker colours first, where the
/// picture's colours are few enough; otherwise unchanged. Takes 24 bits a pixel; the order of
/// the rows stays.
BitmapSource WithFewestBits(BitmapSource picture);

}  // namespace quillo::host
