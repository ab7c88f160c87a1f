#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "host/emf/reader.h"
#include "host/emf/transform.h"
#include "host/engine/graphics.h"

namespace quillo::host::emf {

/// What to do with glyph indexes of a font that is not installed: they are numbers of the glyphs of
/// another font than the one that stands in.
enum class GlyphOrder {
  kAsSubstitute,  // draw them when the substitute keeps the common order: character - 29 for ASCII
  kAssume,        // draw them with any substitute
  kDrop,          // do not draw them
};

struct PlayOptions {
  GlyphOrder glyph_order = GlyphOrder::kAsSubstitute;
};

/// How a font of the metafile came out.
struct FontUse {
  std::wstring used;            // family that was really used
  bool substituted = false;     // it is another one than was asked for
  uint64_t characters = 0;      // drawn: characters, and glyph indexes that are sure
  uint64_t in_others = 0;       // characters that it lacks, drawn with other fonts
  uint64_t missing = 0;         // characters that no installed font has
  uint64_t assumed_glyphs = 0;  // drawn through the substitute's order of glyphs
  uint64_t dropped_glyphs = 0;  // not drawn
};

struct PlayResult {
  /// Records that could not be carried to the page, by name.
  std::map<std::string, uint64_t> not_carried;
  /// By the face name that the metafile asks for.
  std::map<std::wstring, FontUse> fonts;
};

/// Draws the records that `reader` has before it. What is wrong with them stands in the reader's
/// faults afterwards; a damaged record is passed over, and the rest is drawn. Needs COM on this
/// thread (bitmaps that are coded as JPEG or PNG).
/// `to_page`: from pixels of the reference device to pixels of the canvas (see page_mapping.h).
PlayResult PlayMetafile(MetafileReader& reader, const Transform& to_page, Graphics& canvas,
                        const PlayOptions& options = {});

}  // namespace quillo::host::emf
