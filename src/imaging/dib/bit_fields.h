#pragma once

#include <array>
#include <cstdint>

#include "base/bytes.h"
#include "imaging/dib/dib_header.h"

namespace quillo::imaging {

/// Converts rows of 16- or 32-bit pixels with colour masks into the kernel's 5-5-5 or 8-8-8 pixels.
///
/// Any masks are accepted: a channel's value is what lies between the lowest and the highest bit of
/// its mask, scaled to the range of the result and rounded to nearest (of channels above 8 bits the
/// upper 8 count); an empty mask gives 0. Rows with the usual masks are copied, including spare
/// bits; otherwise spare bits become 0.
class BitFieldConverter {
 public:
  BitFieldConverter(uint32_t bits, const ColourMasks& masks);

  /// Both rows hold `width` pixels.
  void Convert(Bytes source, uint32_t width, MutableBytes row) const;

 private:
  struct Channel {
    uint32_t mask;
    uint32_t shift;                     // down to at most 8 bits
    std::array<uint32_t, 256> shifted;  // result bits of each value, in place
  };

  template <typename Pixel>
  void ConvertPixels(Bytes source, uint32_t width, MutableBytes row) const;

  uint32_t bits_;
  bool is_usual_;
  std::array<Channel, 3> channels_;
};

}  // namespace quillo::imaging
