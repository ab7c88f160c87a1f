#pragma once

#include <cstdint>
#include <span>

#include "base/bytes.h"
#include "imaging/pixels/palettes.h"

namespace quillo::imaging {

/// Bytes of zeroed work space that an ErrorDiffuser of this width needs.
size_t DitherWorkSize(uint32_t width);

/// Dithers rows of colours to a palette by error diffusion (Floyd and Steinberg, "An Adaptive
/// Algorithm for Spatial Greyscale", 1976): of the difference between a wanted and a chosen colour,
/// 7/16 go to the right, and 3/16, 5/16 and 1/16 to the three pixels below.
///
/// The chosen entry is the one nearest to the wanted colour with 5 bits a channel.
class ErrorDiffuser {
 public:
  /// `palette` is not empty, `work` is aligned for int16_t.
  ErrorDiffuser(std::span<const PaletteEntry> palette, uint32_t width, MutableBytes work);

  /// Takes the next row, as `width` pixels of three bytes (blue first), and writes its indexes with
  /// `bits` (1, 4 or 8) each.
  void Row(const std::byte* colours, uint32_t bits, std::byte* indexes);

 private:
  struct Error {
    int16_t channel[3];  // blue, green, red, in sixteenths
  };
  friend size_t DitherWorkSize(uint32_t width);

  uint32_t Nearest(PaletteEntry colour);

  std::span<const PaletteEntry> palette_;
  uint32_t width_;
  Error* here_;        // errors that the row inherits; one entry more on either side
  Error* below_;       // errors that it passes to the next row
  uint16_t* nearest_;  // by 5-5-5 colour: index + 1, or 0 where not known yet
};

}  // namespace quillo::imaging
