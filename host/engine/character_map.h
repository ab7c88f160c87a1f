#pragma once

#include "base/windows.h"

#include <cstdint>
#include <map>
#include <vector>

namespace quillo::host {

/// Properties of a font's 'cmap' table that GDI does not report (OpenType, "cmap").
struct CharacterMap {
  /// Consecutive characters with consecutive glyphs.
  struct Group {
    uint32_t first, last;  // code points
    uint32_t glyph;        // of the first
  };

  /// Whether glyph indexes can be turned back into characters: the last subtable is of format 4, in
  /// a font with a map for Windows.
  bool invertible = false;
  /// Whether it has a map of symbol codes (U+F020 to U+F0FF).
  bool symbols = false;
  std::vector<Group> groups;  // of the subtable of format 12, ascending; empty if there is none

  /// The glyph of a character above U+FFFF; 0 when there is none.
  uint16_t GlyphOf(char32_t character) const;
};

/// Reads it from the font that is selected in `dc`; empty if that fails.
CharacterMap ReadCharacterMap(HDC dc);

/// The first character of each glyph of the font that is selected in `dc` and has the map `map`.
std::map<uint16_t, char32_t> InvertCharacterMap(HDC dc, const CharacterMap& map);

}  // namespace quillo::host
