#pragma once

#include "base/ddi.h"

#include <array>
#include <cstdint>
#include <span>

#include "host/engine/drawing.h"
#include "host/engine/path.h"
#include "host/engine/text.h"

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
  /// top; parts outside the source draw nothing. Targets may be mirrored (right < left, bottom <
  /// top) where a source rectangle is given. `rop3` is the operation byte of a ternary code (0xCC:
  /// SRCCOPY); a brush or source that the operation does not use may be null.
  virtual void BitBlt(const RECTL& target, uint8_t rop3, const BrushDescription* brush,
                      const BitmapSource* source, POINTL source_origin, const DrawState& state) = 0;
  virtual void StretchBlt(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                          uint8_t rop3, const BrushDescription* brush, ULONG stretch_mode,
                          const DrawState& state) = 0;
  /// Two operations on one rectangle: where the mask (1 bit a pixel, as large as the source
  /// rectangle from `mask_origin` on) is set the low byte of `rop4`, elsewhere the high one.
  virtual void MaskBlt(const RECTL& target, uint16_t rop4, const BrushDescription* brush,
                       const BitmapSource& source, const RECTL& source_rect,
                       const BitmapSource& mask, POINTL mask_origin, const DrawState& state) = 0;
  /// Copies a source rectangle into a parallelogram: its top left, top right and bottom left
  /// corner. A mask that is given (1 bit a pixel, as large as the source rectangle from
  /// `mask_origin` on) leaves out the pixels where it is clear.
  virtual void PlgBlt(const std::array<POINTFIX, 3>& target, const BitmapSource& source,
                      const RECTL& source_rect, const BitmapSource* mask, POINTL mask_origin,
                      ULONG stretch_mode, const DrawState& state) = 0;
  /// With AC_SRC_ALPHA the source has 32 bits, the colours multiplied by the alpha.
  virtual void AlphaBlend(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                          BLENDFUNCTION blend, const DrawState& state) = 0;
  /// Copies all pixels but those of the colour `key` (0x00RRGGBB).
  virtual void TransparentBlt(const RECTL& target, const BitmapSource& source,
                              const RECTL& source_rect, uint32_t key, const DrawState& state) = 0;
  /// Vertices in device pixels; `mesh` holds their numbers, two for each rectangle
  /// (GRADIENT_FILL_RECT_H, _V) or three for each triangle (GRADIENT_FILL_TRIANGLE). Meshes with a
  /// number that has no vertex are left out.
  virtual void GradientFill(std::span<const TRIVERTEX> vertices, std::span<const ULONG> mesh,
                            ULONG mode, const DrawState& state) = 0;

  /// Draws a line of text; see text.h. Gives the length of the line in logical units.
  virtual double Text(const TextDescription& text, const DrawState& state) = 0;

  /// Size in device pixels.
  virtual SIZEL Size() const = 0;
};

}  // namespace quillo::host
