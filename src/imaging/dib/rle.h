#pragma once

#include <cstdint>

#include "base/bytes.h"
#include "imaging/pixels/row_access.h"

namespace quillo::imaging {

/// Expands a BI_RLE8 or BI_RLE4 stream (`bits` 8 or 4) into rows of that depth.
///
/// Pixels that the stream skips are zero, and rows without any pixel are not stored. What exceeds a
/// row or the last row is dropped; a stream that ends early ends the picture. `scratch` is a zeroed
/// row. kSuccess, or what stopped `store`.
int ExpandRle(Bytes stream, uint32_t bits, uint32_t width, uint32_t height, MutableBytes scratch,
              RowStore store);

}  // namespace quillo::imaging
