#pragma once

#include "base/windows.h"

#include <cstdint>

#include "base/system_owners.h"
#include "fonts/cmap4_table.h"

namespace quillo {

/// The format-4 'cmap' subtable of one font: empty, or a copy in a global block.
class CCmap4 {
 public:
  CCmap4() = default;
  virtual ~CCmap4() = default;
  CCmap4(const CCmap4&) = delete;
  CCmap4& operator=(const CCmap4&) = delete;

  /// Replaces what is held by the subtable of the font selected in `dc`. Returns 1, or 0 and holds
  /// nothing when the font has no readable one or memory is short.
  int32_t Load(HDC dc);

  /// 0 when empty or the character is unmapped.
  [[nodiscard]] uint16_t GlyphOf(uint16_t character) const { return table_.GlyphOf(character); }

  /// The number of mapped characters, modulo 65536.
  [[nodiscard]] uint16_t MappedCount() const { return table_.MappedCount(); }

  [[nodiscard]] const fonts::Cmap4Table& Table() const { return table_; }

 private:
  GlobalBlock data_;         // the subtable and its slack, host byte order
  fonts::Cmap4Table table_;  // a view of data_
};

// For callers that ask once (as CharactersOfGlyphs); a job uses CFontMapManager.

/// For the font selected in `dc`: the number of mapped characters, modulo 65536.
uint16_t CountMappedCharacters(HDC dc);

/// For the font selected in `dc`: the glyph of a character, 0 when unmapped.
uint16_t GlyphOfCharacter(HDC dc, uint16_t character);

}  // namespace quillo
