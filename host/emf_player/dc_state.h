#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <memory>
#include <vector>

#include "host/emf_format/geometry.h"
#include "host/emf_format/page_transform.h"
#include "host/emf_format/transform.h"
#include "host/emf_player/objects.h"
#include "host/engine/clip_shape.h"

namespace quillo::host::emf {

/// What SaveDC saves: the settings that records make for later ones, with their initial values.
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
  COLORREF text_colour = RGB(0, 0, 0);
  COLORREF background_colour = RGB(255, 255, 255);
  PointL brush_origin;       // pixels of the reference device
  int32_t break_extra = 0;   // SetTextJustification: logical units to distribute
  uint32_t break_count = 0;  // over this many spaces

  Shared<PenObject> pen;      // never null
  Shared<BrushObject> brush;  // never null
  Shared<FontObject> font;    // never null
  Shared<PaletteObject> palette;

  ClipShape clip;  // page pixels
  ClipShape meta;  // page pixels; drawing touches the intersection of the two
};

/// The states that SaveDC has put aside.
class SavedStates {
 public:
  /// False when too many states are saved already.
  bool Save(const DcState& state);
  /// Moves a saved state into `state` and drops those saved after it. `level` as for RestoreDC:
  /// negative counts from the last save, positive from the first. False when there is no such
  /// state.
  bool Restore(int32_t level, DcState& state);

 private:
  std::vector<DcState> saved_;
};

}  // namespace quillo::host::emf
