#pragma once

#include "base/ddi.h"

#include <memory>

#include "host/emf_player/playback.h"
#include "host/engine/drawing.h"
#include "host/pictures/dib.h"

namespace quillo::host::emf {

/// Where a record keeps a DIB: places from the record's start, sizes in bytes.
struct DibPlace {
  uint32_t info_offset = 0;
  uint32_t info_size = 0;
  uint32_t bits_offset = 0;
  uint32_t bits_size = 0;

  bool Empty() const { return info_size == 0 || bits_size == 0; }
};

/// Reads the four numbers of a DibPlace as most records hold them.
DibPlace ReadDibPlace(PayloadReader& record);

/// The bitmap at `place`; null when it cannot be drawn, which is reported. `rows` as for ParseDib.
std::shared_ptr<const BitmapSource> ReadBitmap(Playback& dc, PayloadReader& record,
                                               const DibPlace& place, uint32_t colors,
                                               uint32_t rows = 0);

}  // namespace quillo::host::emf
