#include "fonts/font_mapper.h"

#include <algorithm>

namespace quillo {

int32_t CFontMapper::Build(HDC dc) {
  return cmap_.Load(dc) != 0 && glyph_map_.Build(cmap_) != 0 && identity_.Read(dc);
}

uint32_t CFontMapper::Translate(uint32_t count, const uint16_t* glyphs,
                                uint16_t* characters) const {
  std::transform(glyphs, glyphs + count, characters,
                 [this](uint16_t glyph) { return glyph_map_.CharacterOf(glyph); });
  return count;
}

}  // namespace quillo
