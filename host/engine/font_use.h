#pragma once

#include <cstdint>
#include <string>

namespace quillo::host {

/// What to do with glyph indexes of a font that is not installed: they are numbers of the glyphs of
/// another font than the one that stands in.
enum class GlyphOrder {
  kAsSubstitute,  // draw them when the substitute keeps the common order: character - 29 for ASCII
  kAssume,        // draw them with any substitute
  kDrop,          // do not draw them
};

/// How a font that an input asks for came out.
struct FontUse {
  std::wstring used;            // family that was really used
  bool substituted = false;     // it is another one than was asked for
  uint64_t characters = 0;      // drawn: characters, and glyph indexes that are sure
  uint64_t in_others = 0;       // characters that it lacks, drawn with other fonts
  uint64_t missing = 0;         // characters that no installed font has
  uint64_t assumed_glyphs = 0;  // drawn through the substitute's order of glyphs
  uint64_t dropped_glyphs = 0;  // not drawn
  bool reversible = true;       // glyph indexes of `used` can be turned back into characters
};

}  // namespace quillo::host
