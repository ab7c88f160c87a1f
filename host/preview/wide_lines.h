#pragma once

#include "base/windows.h"

#include "host/cairo/cairo_owners.h"
#include "host/preview/sheet_bitmap.h"

namespace quillo::host {

/// Draws lines of wide pens on a sheet. Wine unites a region for each piece of such a line, which
/// takes many times as long.
class WideLines {
 public:
  /// `sheet` must outlive this.
  explicit WideLines(SheetBitmap& sheet);

  /// Draws the path of a DC of the sheet as StrokePath does, where the pen is wide, solid, of one
  /// colour, and covers what is there; false for other pens: then nothing was done. `scale`: pixels
  /// of the sheet for a unit of the pen. Throws std::bad_alloc.
  bool Draw(HDC dc, double scale);

 private:
  /// Makes path and pen those of the context.
  void Prepare(HDC dc, const EXTLOGPEN& pen, double scale);
  /// What the prepared line may touch.
  RECT Reach() const;

  SheetBitmap& sheet_;
  CairoSurface mask_;  // of the sheet, a byte a pixel; empty between calls
  CairoContext context_;
};

}  // namespace quillo::host
