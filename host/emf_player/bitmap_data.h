#pragma once

#include "base/ddi.h"

#include <memory>

#include "host/emf_format/payload_reader.h"
#include "host/emf_player/emf_player.h"
#include "host/engine/drawing.h"
#include "host/pictures/dib.h"

namespace quillo::host::emf {

/// Where a record keeps a DIB: offsets from the record's start and sizes, in bytes.
struct DibPlace {
  uint32_t info_offset = 0;
  uint32_t info_size = 0;
  uint32_t bits_offset = 0;
  uint32_t bits_size = 0;

  bool Empty() const { return info_size == 0 || bits_size == 0; }
};

/// Reads the four numbers of a DibPlace in the order that most records have.
DibPlace ReadDibPlace(PayloadReader& record);

/// The bitmap at `place`. Null when it cannot be drawn, which is reported. `colours` and `rows` as
/// for ParseDib.
std::shared_ptr<const BitmapSource> ReadBitmap(EmfPlayer& player, PayloadReader& record,
                                               const DibPlace& place, uint32_t colours,
                                               uint32_t rows = 0);

}  // namespace quillo::host::emf
