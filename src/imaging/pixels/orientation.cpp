#include "imaging/pixels/orientation.h"

#include "imaging/pixels/pixel_bits.h"
#include "imaging/pixels/result.h"

namespace quillo::imaging {

int TurnRows(uint32_t perspective, const Geometry& source, RowFetch fetch, uint32_t top,
             const Geometry& band, std::byte* band_rows) {
  const Orientation orientation(perspective, source.width, source.height);
  const bool swaps = Orientation::SwapsAxes(perspective);
  for (uint32_t row = 0; row < source.height; ++row) {
    // Without swapped axes a row is seen in one row, which may lie outside the band.
    if (!swaps && orientation.Seen(0, row).y - top >= band.height) continue;
    const std::byte* from = fetch(row);
    if (from == nullptr) return kFileError;
    for (uint32_t column = 0; column < source.width; ++column) {
      const Orientation::Point seen = orientation.Seen(column, row);
      if (seen.y - top >= band.height) continue;
      CopyPixel(source.bits_per_pixel, from, column,
                band_rows + size_t{seen.y - top} * band.bytes_per_line, seen.x);
    }
  }
  return kSuccess;
}

}  // namespace quillo::imaging
