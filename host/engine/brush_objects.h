#pragma once

#include "base/ddi.h"

#include <optional>

#include "host/engine/drawing.h"
#include "host/engine/picture_objects.h"
#include "host/engine/services/brushes.h"

namespace quillo::host {

/// The objects behind one brush for the length of one call.
class BrushObjects {
 public:
  /// `realize` may be null; `target` is the surface that the brush is for.
  BrushObjects(const BrushDescription& brush, PFN_DrvRealizeBrush realize, SURFOBJ& target);

  BRUSHOBJ* Brush() { return &*brush_; }
  /// How often the driver was asked to realise the brush.
  unsigned Realizations() const { return brush_->Realizations(); }

 private:
  BitmapSource hatch_;
  std::optional<PictureObjects> pattern_;
  std::optional<BrushObject> brush_;
};

}  // namespace quillo::host
