#pragma once

#include <cstdint>
#include <string>

namespace quillo::host {

/// What to do with glyph indexes of a font that is not installed: its substitute may number its
/// glyphs differently.
enum class GlyphOrder {
  kAsSubstitute,  // draw them if the substitute has the common order: character - 29 for ASCII
  kAssume,        // draw them with any substitute
  kDrop,          // do not draw them
};

/// How a font that an input asks for was drawn.
struct FontUse {
  std::wstring used;            // family that was actually used
  bool substituted = false;     // `used` is not what was asked for
  uint64_t characters = 0;      // drawn: characters, and reliable glyph indexes
  uint64_t in_others = 0;       // characters that it lacks, drawn with other fonts
  uint64_t missing = 0;         // characters that no installed font has
  uint64_t assumed_glyphs = 0;  // drawn in the substitute's glyph order
  uint64_t dropped_glyphs = 0;  // not drawn
  bool reversible = true;       // glyph indexes of `used` can be turned back into characters
};

}  // namespace quillo::host
