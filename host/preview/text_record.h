#pragma once

#include "base/windows.h"

#include <cstddef>
#include <vector>

namespace quillo::host {

/// A text record that holds one character above U+FFFF, with its glyph in the font of `dc` instead:
/// not every platform's GDI finds that by itself. Empty for other records, and without such a
/// glyph.
std::vector<std::byte> WithGlyphOfPair(HDC dc, const ENHMETARECORD& record);

}  // namespace quillo::host
