#pragma once

#include "base/windows.h"

#include <cstdint>

#include "fonts/cmap4.h"
#include "fonts/font_identity.h"
#include "fonts/glyph_map.h"
#include "fonts/heap_object.h"

namespace quillo {

/// Glyphs to characters for one font.
class CFontMapper : public HeapObject {
 public:
  CFontMapper() = default;
  virtual ~CFontMapper() = default;
  CFontMapper(const CFontMapper&) = delete;
  CFontMapper& operator=(const CFontMapper&) = delete;

  /// Reads the font selected in `dc`. Returns 1 when the mapper is usable: the font has a format-4
  /// cmap that maps something, metrics and a face name.
  int32_t Build(HDC dc);

  /// Whether the mapper serves the font.
  [[nodiscard]] bool Matches(const FontIdentity& font) const { return identity_.Matches(font); }

  /// characters[i] becomes the character of glyphs[i]. Returns `count`.
  uint32_t Translate(uint32_t count, const uint16_t* glyphs, uint16_t* characters) const;

  /// Whether both were built from the same font at the same size. For callers that compare mappers;
  /// the cache asks Matches.
  bool operator==(const CFontMapper& other) const { return identity_ == other.identity_; }

 private:
  FontIdentity identity_;
  CGlyphMap glyph_map_;
  CCmap4 cmap_;
};

}  // namespace quillo
