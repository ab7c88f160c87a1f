#pragma once

#include <cstdint>

#include "imaging/pixels/geometry.h"
#include "imaging/pixels/row_access.h"

namespace quillo::imaging {

/// Where the stored pixels of a bitmap are seen. The eight view perspectives are numbered as TIFF's
/// Orientation tag: 1 top-left, 2 top-right, 3 bottom-right, 4 bottom-left (where row 0, column 0
/// is seen), and 5 to 8 the same with rows and columns exchanged: left-top, right-top,
/// right-bottom, left-bottom.
class Orientation {
 public:
  struct Point {
    uint32_t x;
    uint32_t y;
  };

  /// `width` and `height` are those of the storage.
  constexpr Orientation(uint32_t perspective, uint32_t width, uint32_t height)
      : last_column_(width - 1),
        last_row_(height - 1),
        swaps_axes_(SwapsAxes(perspective)),
        reverses_columns_(perspective == 2 || perspective == 3 || perspective == 7 ||
                          perspective == 8),
        reverses_rows_(perspective == 3 || perspective == 4 || perspective == 6 ||
                       perspective == 7) {}

  static constexpr bool SwapsAxes(uint32_t perspective) { return perspective >= 5; }

  /// The place, from the top left, where the pixel at `column`, `row` of the storage is seen.
  [[nodiscard]] constexpr Point Seen(uint32_t column, uint32_t row) const {
    const uint32_t along = reverses_columns_ ? last_column_ - column : column;
    const uint32_t down = reverses_rows_ ? last_row_ - row : row;
    return swaps_axes_ ? Point{down, along} : Point{along, down};
  }

 private:
  uint32_t last_column_;
  uint32_t last_row_;
  bool swaps_axes_;
  bool reverses_columns_;
  bool reverses_rows_;
};

/// Gathers the rows that are seen from row `top` on, as many as `band` holds, from the pixels of a
/// bitmap of the given size and view perspective. `band` is zeroed; its rows are as wide as the
/// picture that is seen. kFileError for a row that cannot be fetched.
int TurnRows(uint32_t perspective, const Geometry& source, RowFetch fetch, uint32_t top,
             const Geometry& band, std::byte* band_rows);

}  // namespace quillo::imaging
