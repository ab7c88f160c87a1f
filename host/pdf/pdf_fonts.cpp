#include "host/pdf/pdf_fonts.h"

#include <algorithm>
#include <cairo-win32.h>
#include <new>

#include "host/cairo/cairo_path.h"
#include "host/emf_player/text_outline.h"

namespace quillo::host::pdf {

namespace {

/// Whether the licence bits of a font (OS/2, "fsType") allow a subset of it in a file.
bool MayBeEmbedded(USHORT licence) {
  constexpr unsigned kRestricted = 0x0002, kPreviewOrEditing = 0x000C;
  constexpr unsigned kNoSubset = 0x0100, kBitmapsOnly = 0x0200;
  if ((licence & (kNoSubset | kBitmapsOnly)) != 0) return false;
  return (licence & kRestricted) == 0 || (licence & kPreviewOrEditing) != 0;
}

const cairo_user_data_key_t kPdfFont{};

/// Draws a glyph, an em being a unit.
cairo_status_t RenderGlyph(cairo_scaled_font_t* scaled, unsigned long glyph, cairo_t* context,
                           cairo_text_extents_t* extents) {
  try {
    const auto* font = static_cast<const PdfFont*>(
        cairo_font_face_get_user_data(cairo_scaled_font_get_font_face(scaled), &kPdfFont));
    int advance = 0;
    GetCharWidthI(font->dc.Get(), static_cast<UINT>(glyph), 1, nullptr, &advance);
    extents->x_advance = static_cast<double>(advance) / font->em;
    Path outline;
    emf::AddGlyphOutline(outline, font->dc.Get(), static_cast<USHORT>(glyph), {1, 0, 0, 1, 0, 0},
                         {0, 0});
    cairo_scale(context, 1.0 / font->em, 1.0 / font->em);
    AddToContext(context, outline);
    cairo_fill(context);
    return CAIRO_STATUS_SUCCESS;
  } catch (const std::bad_alloc&) {
    return CAIRO_STATUS_NO_MEMORY;
  }
}

}  // namespace

PdfFont::PdfFont(const LOGFONTW& font, int units_per_em, bool may_be_embedded)
    : em(units_per_em), outlines(!may_be_embedded) {
  if (!outlines) {
    LOGFONTW copy = font;
    face.reset(cairo_win32_font_face_create_for_logfontw(&copy));
  } else {
    opened.Reset(CreateFontIndirectW(&font));
    dc.Reset(CreateCompatibleDC(nullptr));
    if (!dc || !opened || SelectObject(dc.Get(), opened.Get()) == nullptr) throw std::bad_alloc();
    face.reset(cairo_user_font_face_create());
    cairo_user_font_face_set_render_glyph_func(face.get(), RenderGlyph);
    cairo_font_face_set_user_data(face.get(), &kPdfFont, this, nullptr);
  }
  if (cairo_font_face_status(face.get()) != CAIRO_STATUS_SUCCESS) throw std::bad_alloc();
}

const PdfFont& PdfFonts::Find(const TextFont& font) {
  LOGFONTW opened{};
  GetObjectW(GetCurrentObject(font.Dc(), OBJ_FONT), sizeof opened, &opened);
  const size_t name = wcsnlen(opened.lfFaceName, LF_FACESIZE - 1);
  std::fill(opened.lfFaceName + name, opened.lfFaceName + LF_FACESIZE, L'\0');
  std::unique_ptr<PdfFont>& known =
      fonts_[std::string(reinterpret_cast<const char*>(&opened), sizeof opened)];
  if (known == nullptr) {
    known = std::make_unique<PdfFont>(opened, font.Metrics().fwdUnitsPerEm,
                                      MayBeEmbedded(font.Metrics().fsType));
  }
  return *known;
}

}  // namespace quillo::host::pdf
