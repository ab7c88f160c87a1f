#pragma once

#include "base/ddi.h"

#include <cstdint>

#include "host/engine/drawing.h"
#include "host/engine/path.h"

namespace quillo::host {

/// What a picture is drawn on: a page (Graphics), or a record of the calls.
///
/// Everything is in device space. Calls whose drawing lies outside the clip or the surface are
/// dropped, as GDI drops them.
class Canvas {
 public:
  virtual ~Canvas() = default;

  virtual void Stroke(const Path& path, const PenDescription& pen, const DrawState& state) = 0;
  virtual void Fill(const Path& path, const BrushDescription& brush, FillMode mode,
                    const DrawState& state) = 0;
  virtual void StrokeAndFill(const Path& path, const PenDescription& pen,
                             const BrushDescription& brush, FillMode mode,
                             const DrawState& state) = 0;
  /// One line. A solid cosmetic pen goes to DrvLineTo first, any other is a path.
  virtual void Line(POINTFIX from, POINTFIX to, const PenDescription& pen,
                    const DrawState& state) = 0;
  /// Paints the pixels of `area` that the clip leaves (FillRgn, PaintRgn, InvertRgn, FrameRgn).
  virtual void Paint(const ClipShape& area, const BrushDescription& brush,
                     const DrawState& state) = 0;

  /// The blits. `source_origin` and source rectangles are in pixels of the source, rows from the
  /// top. Targets may be mirrored (right < left, bottom < top) where a source rectangle is given.
  /// `rop3` is the operation byte of a ternary code (0xCC: SRCCOPY); a brush or source that the
  /// operation does not use may be null.
  virtual void BitBlt(const RECTL& target, uint8_t rop3, const BrushDescription* brush,
                      const BitmapSource* source, POINTL source_origin, const DrawState& state) = 0;
  virtual void StretchBlt(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                          uint8_t rop3, const BrushDescription* brush, ULONG stretch_mode,
                          const DrawState& state) = 0;

  /// Size in device pixels.
  virtual SIZEL Size() const = 0;
};

}  // namespace quillo::host
