#pragma once

#include "base/windows.h"

namespace quillo {

/// What a font is recognised by: its face name and its metrics at the selected size.
struct FontIdentity {
  wchar_t face[LF_FACESIZE] = {};
  TEXTMETRICW metrics = {};

  /// Reads the font selected in `dc`; false when GDI returns no metrics or no face.
  bool Read(HDC dc);

  /// Whether both share a mapper.
  /// Compatibility: ascent, descent, leadings and character widths are not compared. Kept for
  /// pages, whose text depends on which fonts share a mapper.
  [[nodiscard]] bool Matches(const FontIdentity& other) const;

  /// Same face and all metrics, including those that Matches ignores.
  bool operator==(const FontIdentity& other) const;
};

}  // namespace quillo
