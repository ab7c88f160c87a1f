#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "host/cairo/cairo_owners.h"
#include "host/engine/canvas.h"
#include "host/engine/text_layout.h"
#include "host/pdf/mixing.h"
#include "host/pdf/pdf_fonts.h"
#include "host/pdf/text_run.h"

namespace quillo::host::pdf {

/// Drawing that is only near to what the page has, by the name of its operation.
using Approximations = std::map<std::string, uint64_t>;

/// One page of a PDF file as a canvas.
///
/// A raster operation becomes layers that are blended with the page (see mixing.h). Cosmetic lines
/// are a dot of whatever shows the page; so that patterns and dashes in dots show there as they do
/// on a screen, a dot of theirs is 1/96 inch.
class PdfPage : public Canvas {
 public:
  /// `context`: its unit is a pixel of the page, `dpi` of them an inch; the page is empty.
  /// Everything must outlive the page.
  PdfPage(cairo_t* context, double dpi, PdfFonts& fonts, Approximations& approximations);

  void Stroke(const Path& path, const PenDescription& pen, const DrawState& state) override;
  void Fill(const Path& path, const BrushDescription& brush, FillMode mode,
            const DrawState& state) override;
  void StrokeAndFill(const Path& path, const PenDescription& pen, const BrushDescription& brush,
                     FillMode mode, const DrawState& state) override;
  void Line(POINTFIX from, POINTFIX to, const PenDescription& pen, const DrawState& state) override;
  void Paint(const ClipShape& area, const BrushDescription& brush, const DrawState& state) override;
  void BitBlt(const RECTL& target, uint8_t rop3, const BrushDescription* brush,
              const BitmapSource* source, POINTL source_origin, const DrawState& state) override;
  void StretchBlt(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                  uint8_t rop3, const BrushDescription* brush, ULONG stretch_mode,
                  const DrawState& state) override;
  void MaskBlt(const RECTL& target, uint16_t rop4, const BrushDescription* brush,
               const BitmapSource& source, const RECTL& source_rect, const BitmapSource& mask,
               POINTL mask_origin, const DrawState& state) override;
  void PlgBlt(const std::array<POINTFIX, 3>& target, const BitmapSource& source,
              const RECTL& source_rect, const BitmapSource* mask, POINTL mask_origin,
              ULONG stretch_mode, const DrawState& state) override;
  void AlphaBlend(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                  BLENDFUNCTION blend, const DrawState& state) override;
  void TransparentBlt(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                      uint32_t key, const DrawState& state) override;
  void GradientFill(std::span<const TRIVERTEX> vertices, std::span<const ULONG> mesh, ULONG mode,
                    const DrawState& state) override;
  double Text(const TextDescription& text, const DrawState& state) override;
  void Finish() override;

 private:
  /// An inversion by a colour that is held back. Applications fill with a pattern of two colours by
  /// inverting, masking, and inverting again; only together can that be drawn.
  struct Inversion {
    COLORREF colour;
    RECTL area;
    DrawState state;
  };

  /// Before anything but text: draws the text so far, and sets the clip.
  void Begin(const ClipShape& clip);
  /// Draws an inversion that nothing takes back.
  void SettleInversion();
  void BeginPicture(const ClipShape& clip);
  void SetBlend(Blend blend);
  /// 0x00RRGGBB.
  void SetColour(uint32_t colour);
  /// What of a rectangle the clip lets through, in whole dots from `origin` on.
  cairo_rectangle_t DotsOf(const RECTL& bounds, const PointD& origin) const;
  /// `picture`: its unit is a dot, its origin on the page is `origin`.
  void SetPattern(cairo_surface_t* picture, cairo_extend_t extend, const PointD& origin);
  void SetPen(const PenDescription& pen);
  /// Sets each layer that the brush makes under an operation without source, and calls `draw`,
  /// which stays inside `bounds`.
  void WithInk(const BrushDescription& brush, uint8_t rop3, const std::string& name,
               const RECTL& bounds, const DrawState& state, const std::function<void()>& draw);
  void FillRectangle(const RECTL& area, const BrushDescription& brush, uint8_t rop3,
                     const DrawState& state);
  void AddGlyphs(const TextDescription& text, const TextLayout& layout, const GlyphRun& run);

  // `placing` puts the unit square where the picture goes; it has an inverse.
  void DrawPicture(cairo_surface_t* picture, const cairo_matrix_t& placing, Blend blend,
                   double alpha = 1);
  void CopyPicture(const BitmapSource& source, const RECTL& rect, const cairo_matrix_t& placing);
  /// Draws what an operation makes of the pixels of a rectangle of the source.
  void DrawMixed(const RECTL& rect, const cairo_matrix_t& placing, const std::string& name,
                 const std::function<Mixing(LONG x, LONG y)>& mixing_at);

  cairo_t* context_;
  const double dot_;  // page pixels
  PdfFonts& fonts_;
  Approximations& approximations_;
  ClipShape clip_;  // that is set
  std::optional<Inversion> inversion_;
  TextRun run_;
};

}  // namespace quillo::host::pdf
