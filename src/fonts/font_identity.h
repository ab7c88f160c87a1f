#pragma once

#include "base/windows.h"

namespace quillo {

/// What a font is recognised by: its face name and its metrics at the selected size.
struct FontIdentity {
  wchar_t face[LF_FACESIZE] = {};
  TEXTMETRICW metrics = {};

  /// Reads the font selected in `dc`; false when GDI gives no metrics or no face.
  bool Read(HDC dc);

  /// Whether both go by the same mapper. Ascent, descent, leadings and character widths are not
  /// compared: they are meant to make no difference.
  [[nodiscard]] bool Matches(const FontIdentity& other) const;

  /// Same face and all metrics, those included that Matches leaves out.
  bool operator==(const FontIdentity& other) const;
};

}  // namespace quillo
