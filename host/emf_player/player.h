#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "host/emf_format/reader.h"
#include "host/emf_format/transform.h"
#include "host/engine/font_use.h"
#include "host/engine/graphics.h"

namespace quillo::host::emf {

struct PlayOptions {
  GlyphOrder glyph_order = GlyphOrder::kAsSubstitute;
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
