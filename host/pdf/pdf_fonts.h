#pragma once

#include "base/ddi.h"

#include <map>
#include <memory>
#include <string>

#include "host/cairo/cairo_owners.h"
#include "host/engine/text_font.h"

namespace quillo::host::pdf {

/// A font as a PDF file has it: one for all its sizes.
struct PdfFont {
  PdfFont(const LOGFONTW& font, int units_per_em, bool may_be_embedded);
  PdfFont(const PdfFont&) = delete;
  PdfFont& operator=(const PdfFont&) = delete;

  const int em;         // font units
  const bool outlines;  // it may not be embedded: its glyphs are drawings
  CairoFontFace face;

  // Of a font that is drawn by its outlines: open at a pixel for each font unit.
  Font opened;
  CreatedDc dc;
};

/// The fonts of a file.
class PdfFonts {
 public:
  /// Stays for the life of this object. Throws std::bad_alloc.
  const PdfFont& Find(const TextFont& font);

 private:
  std::map<std::string, std::unique_ptr<PdfFont>> fonts_;  // by the bytes of the LOGFONTW
};

}  // namespace quillo::host::pdf
