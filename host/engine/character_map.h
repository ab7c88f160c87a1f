#pragma once

#include "base/windows.h"

#include <cstdint>
#include <vector>

namespace quillo::host {

/// What a font's 'cmap' table says that GDI does not (OpenType, "cmap").
struct CharacterMap {
  /// Successive characters with successive glyphs.
  struct Group {
    uint32_t first, last;  // code points
    uint32_t glyph;        // of the first
  };

  /// Whether its last subtable is one that glyph indexes can be turned back by: format 4, in a font
  /// with a map for Windows.
  bool invertible = false;
  /// Whether it has a map of symbol codes (U+F020 to U+F0FF).
  bool symbols = false;
  std::vector<Group> groups;  // of the subtable of format 12, rising; empty when there is none

  /// The glyph of a character above U+FFFF; 0 when there is none.
  uint16_t GlyphOf(char32_t character) const;
};

/// Of the font that is selected in `dc`.
CharacterMap ReadCharacterMap(HDC dc);

}  // namespace quillo::host
