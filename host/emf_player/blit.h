#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <memory>

#include "host/emf_format/payload_reader.h"
#include "host/emf_format/transform.h"
#include "host/emf_player/playback.h"
#include "host/engine/drawing.h"
#include "host/engine/raster_operation.h"

// What the records that draw bitmaps have in common.
namespace quillo::host::emf {

/// The ternary operation of a raster operation code.
constexpr uint8_t RopByte(uint32_t rop) { return static_cast<uint8_t>(rop >> 16); }

/// A rectangle by its corner and its size; a negative size mirrors.
struct Area {
  double x = 0, y = 0, width = 0, height = 0;
};

Area ReadArea(PayloadReader& record);

/// The source's part of a blit, in pixels of the bitmap, always the right way round; what was
/// mirrored there is mirrored in `target` instead.
RECTL OrderSource(Area source, Area& target);

/// A logical rectangle as page pixels; mirrored where the map or the area mirrors.
RECTL MapArea(const Transform& map, const Area& area);

/// A blit whose parts have been read.
struct Blit {
  Area target;    // logical units
  Transform map;  // from there to the page
  uint8_t rop = kSourceCopy;
  std::shared_ptr<const BitmapSource> bitmap;  // null: none is used
  Area source;                                 // pixels of the bitmap
};

void DrawBlit(Playback& dc, Blit blit);

}  // namespace quillo::host::emf
