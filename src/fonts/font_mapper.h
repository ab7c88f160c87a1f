#pragma once

#include "base/windows.h"

#include <cstdint>

#include "fonts/cmap4.h"
#include "fonts/glyph_map.h"

namespace quillo {

/// Glyphs to characters for one font, and what the font is recognised by.
class CFontMapper {
 public:
  CFontMapper() = default;
  virtual ~CFontMapper() = default;
  CFontMapper(const CFontMapper&) = delete;
  CFontMapper& operator=(const CFontMapper&) = delete;

  /// Reads the font selected in `dc`. 1 when the mapper is usable: the font has a format-4 cmap
  /// that maps something, a face name and metrics.
  int32_t Build(HDC dc);

  /// 1 when the font selected in `dc` goes by this mapper. Ascent, descent, leadings and character
  /// widths are not compared: they are meant to make no difference.
  [[nodiscard]] int32_t Matches(HDC dc) const;

  /// characters[i] becomes the character of glyphs[i]. `count`.
  uint32_t Translate(uint32_t count, const uint16_t* glyphs, uint16_t* characters) const;

  /// Same face and all metrics, those included that Matches leaves out.
  bool operator==(const CFontMapper& other) const;

 private:
  wchar_t face_[LF_FACESIZE] = {};
  TEXTMETRICW metrics_ = {};
  CGlyphMap glyph_map_;
  CCmap4 cmap_;
};

}  // namespace quillo
