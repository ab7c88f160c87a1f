#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <memory>

#include "host/emf_format/geometry.h"
#include "host/emf_format/page_transform.h"
#include "host/emf_format/transform.h"
#include "host/emf_player/objects.h"
#include "host/engine/clip_shape.h"

namespace quillo::host::emf {

/// What SaveDC saves: the settings that records leave for the records behind them, as the DC begins
/// with them.
struct DcState {
  explicit DcState(const PageTransform& first_page);

  PageTransform page;
  Transform world;
  PointL position;  // logical

  uint32_t rop2 = R2_COPYPEN;
  uint32_t poly_fill_mode = ALTERNATE;
  uint32_t background_mode = OPAQUE;
  uint32_t stretch_mode = BLACKONWHITE;
  uint32_t text_align = TA_LEFT | TA_TOP | TA_NOUPDATECP;
  uint32_t arc_direction = AD_COUNTERCLOCKWISE;
  float miter_limit = 10;
  COLORREF text_color = RGB(0, 0, 0);
  COLORREF background_color = RGB(255, 255, 255);
  PointL brush_origin;       // pixels of the reference device
  int32_t break_extra = 0;   // SetTextJustification: logical units to spread
  uint32_t break_count = 0;  // over so many spaces

  Shared<PenObject> pen;      // never null
  Shared<BrushObject> brush;  // never null
  Shared<FontObject> font;    // never null
  Shared<PaletteObject> palette;

  ClipShape clip;  // page pixels
  ClipShape meta;  // page pixels; what drawing touches is the intersection of the two
};

}  // namespace quillo::host::emf
