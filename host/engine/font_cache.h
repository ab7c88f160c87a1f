#pragma once

#include "base/ddi.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/engine/text_font.h"

namespace quillo::host {

/// The fonts that show a text.
struct FontChoice {
  using Font = std::shared_ptr<const TextFont>;

  std::vector<Font> fonts;  // of each UTF-16 unit; empty: all are in the wanted font
  size_t in_others = 0;     // units that another font has
  size_t missing = 0;       // units that no installed font has
  bool AllInOne() const { return fonts.empty(); }
};

/// The open fonts of a document. Documents create the same font again and again; it is opened once.
class FontCache {
 public:
  using Font = FontChoice::Font;

  /// Null when the platform has no font at all for it. The substitute for a font that is not
  /// installed is one whose glyph indexes can be turned back into characters, if there is any.
  Font Find(const LOGFONTW& font);

  /// The fonts for UTF-16 text in `font`, with other installed ones for characters that it lacks. A
  /// character and its marks are in one font, if any has them all.
  FontChoice Choose(const Font& font, std::wstring_view text);

 private:
  struct Face {
    std::wstring name;
    BYTE pitch_and_family;
  };
  /// The index of a face that has these characters, or none.
  using Known = std::map<std::wstring, std::optional<size_t>>;

  Font Open(const LOGFONTW& font, const wchar_t* face);
  const std::vector<Face>& Faces();
  const TextFont* Sample(size_t face);
  Font Substitute(const LOGFONTW& wanted, Font found);
  Font Fallback(const TextFont& font, std::wstring_view cluster);

  std::map<std::string, Font> fonts_;         // by the bytes of the LOGFONTW
  std::vector<Face> faces_;                   // of the system's outline fonts with letters
  std::vector<std::optional<Font>> samples_;  // of each face, once needed; null: cannot be opened
  Known known_[2];                            // for fonts of variable and of fixed pitch
};

}  // namespace quillo::host
