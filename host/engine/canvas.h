#pragma once

#include "base/ddi.h"

#include <array>
#include <cstdint>
#include <span>

#include "host/engine/drawing.h"
#include "host/engine/path.h"
#include "host/engine/text.h"

namespace quillo::host {

/// What a page can be drawn on: the driver through the engine (Graphics), or a PDF file.
///
/// Everything is in device space. Drawing outside the clip or the page is dropped.
class Canvas {
 public:
  virtual ~Canvas() = default;

  virtual void Stroke(const Path& path, const PenDescription& pen, const DrawState& state) = 0;
  virtual void Fill(const Path& path, const BrushDescription& brush, FillMode mode,
                    const DrawState& state) = 0;
  virtual void StrokeAndFill(const Path& path, const PenDescription& pen,
                             const BrushDescription& brush, FillMode mode,
                             const DrawState& state) = 0;
  /// One line.
  virtual void Line(POINTFIX from, POINTFIX to, const PenDescription& pen,
                    const DrawState& state) = 0;
  /// Paints the pixels of `area` inside the clip (FillRgn, PaintRgn, InvertRgn, FrameRgn).
  virtual void Paint(const ClipShape& area, const BrushDescription& brush,
                     const DrawState& state) = 0;

  // The blits. `source_origin` and source rectangles are in pixels of the source, rows from the
  // top; parts outside the source draw nothing. Targets may be mirrored (right < left, bottom <
  // top) where a source rectangle is given. `rop3` is the operation byte of a ternary code (0xCC:
  // SRCCOPY); a brush or source that the operation does not use may be null.
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
  /// corner. With a mask (1 bit a pixel, as large as the source rectangle from `mask_origin` on)
  /// only the pixels where it is set are drawn.
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
  /// (GRADIENT_FILL_RECT_H, _V) or three for each triangle (GRADIENT_FILL_TRIANGLE). Skips shapes
  /// with the number of no vertex.
  virtual void GradientFill(std::span<const TRIVERTEX> vertices, std::span<const ULONG> mesh,
                            ULONG mode, const DrawState& state) = 0;

  /// Draws a line of text; see text.h. Returns the length of the line in logical units.
  virtual double Text(const TextDescription& text, const DrawState& state) = 0;

  /// Draws what is held back. To be called when the page is complete.
  virtual void Finish() = 0;
};

}  // namespace quillo::host
