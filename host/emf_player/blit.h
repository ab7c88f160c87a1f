#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <memory>

#include "host/emf_format/payload_reader.h"
#include "host/emf_format/transform.h"
#include "host/emf_player/emf_player.h"
#include "host/engine/drawing.h"
#include "host/engine/raster_operation.h"

// What the records that draw bitmaps share.
namespace quillo::host::emf {

/// The ternary operation of a raster operation code.
constexpr uint8_t RopByte(uint32_t rop) { return static_cast<uint8_t>(rop >> 16); }

/// A rectangle by its corner and its size; a negative size mirrors.
struct Area {
  double x = 0, y = 0, width = 0, height = 0;
};

Area ReadArea(PayloadReader& record);

/// The source rectangle in pixels of the bitmap, without mirroring: where it was mirrored, `target`
/// is mirrored instead.
RECTL OrderSource(Area source, Area& target);

/// A logical rectangle in page pixels, mirrored where the map or the area mirrors.
RECTL MapArea(const Transform& map, const Area& area);

/// A blit whose fields have been read.
struct Blit {
  Area target;    // logical units
  Transform map;  // from there to the page
  uint8_t rop = kSourceCopy;
  std::shared_ptr<const BitmapSource> bitmap{};  // null: the operation uses none
  Area source{};                                 // pixels of the bitmap
};

void DrawBlit(EmfPlayer& player, Blit blit);

}  // namespace quillo::host::emf
