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
  size_t in_others = 0;     // units that the wanted font lacks and another has
  size_t missing = 0;       // units that no installed font has
  bool AllInOne() const { return fonts.empty(); }
};

/// The fonts of a document as the platform opened them. Documents create the same font over and
/// over; each is opened once.
class FontCache {
 public:
  using Font = FontChoice::Font;

  /// Null when the platform has no font at all for it. A font that is not installed is replaced by
  /// one whose glyph indexes can be turned back into characters, if there is any.
  Font Find(const LOGFONTW& font);

  /// The fonts for UTF-16 text in `font`: another installed one for what it lacks. A character and
  /// the marks on it are in one font, if one has them all.
  FontChoice Choose(const Font& font, std::wstring_view text);

 private:
  struct Face {
    std::wstring name;
    BYTE pitch_and_family;
  };
  /// A face of the system that has a character, by its place among them; none.
  using Known = std::map<std::wstring, std::optional<size_t>>;

  Font Open(const LOGFONTW& font, const wchar_t* face);
  const std::vector<Face>& Faces();
  const TextFont* Sample(size_t face);
  Font Substitute(const LOGFONTW& wanted, Font found);
  Font Fallback(const TextFont& font, std::wstring_view cluster);

  std::map<std::string, Font> fonts_;  // by the bytes of the LOGFONTW
  std::vector<Face> faces_;            // of the system's outline fonts with letters
  std::vector<std::optional<Font>>
      samples_;     // of each face, once it was asked for; null: cannot be
  Known known_[2];  // for fonts of variable and of fixed pitch
};

}  // namespace quillo::host
