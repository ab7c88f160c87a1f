#include "fonts/glyph_map.h"

#include <algorithm>
#include <span>

namespace quillo {

uint16_t CGlyphMap::Build(const CCmap4& cmap) {
  size_ = 0;
  table_.Reset();
  const uint16_t size = InverseMapSize(cmap.Table());
  if (size == 0) return 0;
  table_ = GlobalBlock::Allocate(size * sizeof(uint16_t));
  if (!table_) return 0;
  FillInverseMap(cmap.Table(), std::span(static_cast<uint16_t*>(table_.Get()), size));
  size_ = size;
  return size_;
}

uint16_t CharactersOfGlyphs(HDC dc, uint16_t count, const uint16_t* glyphs, uint16_t* characters) {
  CCmap4 cmap;
  cmap.Load(dc);
  CGlyphMap map;
  map.Build(cmap);
  std::transform(glyphs, glyphs + count, characters,
                 [&map](uint16_t glyph) { return map.CharacterOf(glyph); });
  return count;
}

}  // namespace quillo
