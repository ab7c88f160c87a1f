#pragma once

#include "base/ddi.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "base/gdi_owners.h"
#include "host/engine/character_map.h"
#include "host/engine/services/fonts.h"

namespace quillo::host {

/// An installed font that an application has selected, opened at one pixel per design unit, so that
/// every measure is in font units.
class TextFont {
 public:
  /// The outline font that the platform chooses for `font`, or for `face` in its place. Throws
  /// std::bad_alloc when there is none at all.
  explicit TextFont(const LOGFONTW& font, const wchar_t* face = nullptr);

  const LOGFONTW& Wanted() const { return wanted_; }
  /// Family name of the font that is actually used, from its file. (Names() are those that the
  /// platform uses, which are the wanted ones where it replaces one font by another.)
  const std::wstring& Family() const { return family_; }
  /// Whether the family is not the wanted one.
  bool Substituted() const { return substituted_; }

  /// Logical units for each font unit, along the line and across it.
  double ScaleX() const { return scale_x_; }
  double ScaleY() const { return scale_y_; }
  /// Font units: extent above and below the baseline, and the bars (distance of the bar's middle
  /// above the baseline, and its thickness).
  struct Bar {
    int position, thickness;
  };
  int Ascent() const { return ascent_; }
  int Descent() const { return descent_; }
  Bar Underline() const { return underline_; }
  Bar StrikeOut() const { return strike_out_; }

  /// The glyph of a character; 0 when the font has none.
  USHORT GlyphOf(char32_t character) const;
  /// The first character that a glyph stands for, if there is one.
  std::optional<char32_t> CharacterOf(USHORT glyph) const;
  /// Whether it has a glyph for each character of a UTF-16 text, invisible ones aside.
  bool Has(std::wstring_view text) const;
  const CharacterMap& Map() const { return map_; }
  /// Advance of a glyph in font units; 0 when the font has no such glyph.
  int AdvanceOf(USHORT glyph) const;
  /// The advance in whole device pixels that the platform uses for it under this transform, as on a
  /// page. Under a rotation it can differ a lot from AdvanceOf.
  double AdvanceUnder(const XFORML& font_to_device, USHORT glyph) const;

  /// A DC with the font selected, a pixel for each font unit.
  HDC Dc() const { return dc_.Get(); }

  const IFIMETRICS& Metrics() const { return metrics_; }
  const FontNames& Names() const { return names_; }
  FLONG FontType() const { return font_type_; }  // FO_*

 private:
  int LookUp(std::map<USHORT, int>& advances, HDC dc, USHORT glyph) const;
  void Measure(const OUTLINETEXTMETRICW& metrics);

  LOGFONTW wanted_;
  Font font_;
  CreatedDc dc_;  // has font_ selected, so it must be destroyed first
  FontNames names_;
  CharacterMap map_;
  std::wstring family_;
  bool substituted_ = false;
  USHORT glyph_count_ = 0;
  double scale_x_ = 1, scale_y_ = 1;
  int ascent_ = 0, descent_ = 0;
  Bar underline_{}, strike_out_{};
  IFIMETRICS metrics_{};
  FLONG font_type_ = FO_TYPE_TRUETYPE;
  mutable std::map<char32_t, USHORT> glyphs_;      // looked up so far
  mutable std::map<USHORT, char32_t> characters_;  // of every glyph, from the first question on
  mutable std::map<USHORT, int> advances_;
  CreatedDc transformed_dc_;  // has font_ selected too, and this transform set
  mutable std::array<float, 4> transform_{1, 0, 0, 1};
  mutable std::map<USHORT, int> transformed_advances_;
};

}  // namespace quillo::host
