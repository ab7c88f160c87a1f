#pragma once

#include "base/windows.h"

#include <cstdint>

#include "base/system_owners.h"
#include "fonts/cmap4.h"
#include "fonts/inverse_map.h"

namespace quillo {

/// The character of each glyph of one font: empty, or a table in a global block.
class CGlyphMap {
 public:
  CGlyphMap() = default;
  virtual ~CGlyphMap() = default;
  CGlyphMap(const CGlyphMap&) = delete;
  CGlyphMap& operator=(const CGlyphMap&) = delete;

  /// Replaces the table by the inverse of `cmap`. Returns its size; 0 when nothing is mapped, when
  /// the largest glyph is 65535, or when memory is short.
  uint16_t Build(const CCmap4& cmap);

  /// fonts::kNoCharacter where no character maps to the glyph, and for a glyph beyond the table.
  [[nodiscard]] uint16_t CharacterOf(uint16_t glyph) const {
    return glyph < size_ ? static_cast<const uint16_t*>(table_.Get())[glyph] : fonts::kNoCharacter;
  }

 private:
  uint16_t size_ = 0;  // entries of table_
  GlobalBlock table_;
};

/// For the font selected in `dc`: the characters of its glyphs, all fonts::kNoCharacter when the
/// font cannot be read. Returns `count`. For callers that translate once; a job uses
/// CFontMapManager.
uint16_t CharactersOfGlyphs(HDC dc, uint16_t count, const uint16_t* glyphs, uint16_t* characters);

}  // namespace quillo
