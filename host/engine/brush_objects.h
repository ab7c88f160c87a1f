#pragma once

#include "base/ddi.h"

#include <optional>

#include "host/engine/drawing.h"
#include "host/engine/picture_objects.h"
#include "host/engine/services/brushes.h"

namespace quillo::host {

/// A hatch as a monochrome picture of one cell: background, then lines.
BitmapSource HatchPicture(const BrushDescription& brush);

/// The engine's objects for one brush during one call.
class BrushObjects {
 public:
  /// `realise` may be null; `target` is the surface that the brush is for.
  BrushObjects(const BrushDescription& brush, PFN_DrvRealizeBrush realise, SURFOBJ& target);

  BRUSHOBJ* Brush() { return &*brush_; }
  /// How often the driver was asked to realise the brush.
  unsigned Realisations() const { return brush_->Realisations(); }

 private:
  BitmapSource hatch_;
  std::optional<PictureObjects> pattern_;
  std::optional<BrushObject> brush_;
};

}  // namespace quillo::host
