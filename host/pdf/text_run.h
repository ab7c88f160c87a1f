#pragma once

#include "base/windows.h"

#include <string>
#include <string_view>
#include <vector>

#include "host/cairo/cairo_owners.h"
#include "host/engine/text_layout.h"
#include "host/pdf/pdf_fonts.h"

namespace quillo::host::pdf {

/// Glyphs of one font and colour on one base line, with the characters that they show. Pages that
/// draw a character a call get runs all the same.
class TextRun {
 public:
  struct Look {
    const PdfFont* font = nullptr;
    cairo_matrix_t matrix{};  // from ems to page pixels
    COLORREF colour = 0;
  };

  /// Whether a glyph at this place continues the run.
  bool Continues(const Look& look, const PointD& origin) const;
  /// Begins a run; the one so far has been drawn.
  void Begin(const Look& look) { look_ = look; }
  /// `advance`: of the glyph, in ems; `character`: UTF-8.
  void Add(unsigned long glyph, const PointD& origin, double advance, std::string_view character);
  /// Draws the glyphs, if any, and forgets them.
  void Draw(cairo_t* context);

 private:
  /// From the last origin, along the base line and across it, in ems.
  PointD Step(const PointD& origin) const;
  void JoinWords();

  Look look_;
  std::vector<cairo_glyph_t> glyphs_;
  std::vector<cairo_text_cluster_t> clusters_;  // of each glyph
  std::string text_;
  double last_advance_ = 0;
};

}  // namespace quillo::host::pdf
