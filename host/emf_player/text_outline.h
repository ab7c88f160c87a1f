#pragma once

#include "host/engine/path.h"
#include "host/engine/text_layout.h"

namespace quillo::host::emf {

/// Adds the outline of a glyph in the font of `dc`, which is open at a pixel for each font unit.
/// `font_to_device`: of the font's units, y downwards, without its offset; `origin`: device pixels.
void AddGlyphOutline(Path& path, HDC dc, USHORT glyph, const XFORML& font_to_device,
                     const quillo::host::PointD& origin);

/// The outlines of a laid-out line's glyphs, in device pixels.
Path TextOutline(const TextLayout& layout);

}  // namespace quillo::host::emf
