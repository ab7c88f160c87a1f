#pragma once

#include "base/windows.h"

#include <cstddef>
#include <vector>

namespace quillo::host {

/// A text record that holds one character above U+FFFF, changed to that character's glyph in the
/// font of `dc`, which Wine's GDI does not look up. Empty for other records and without a glyph.
std::vector<std::byte> WithGlyphOfPair(HDC dc, const ENHMETARECORD& record);

}  // namespace quillo::host
