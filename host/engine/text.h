#pragma once

#include "base/ddi.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/engine/text_font.h"

namespace quillo::host {

/// A glyph that advances without drawing anything.
inline constexpr wchar_t kNoGlyph = 0xFFFF;

/// One line of text with the state of a DC that places it.
///
/// Positions are laid out in text space: logical units, x along an unrotated line, y downwards, the
/// reference point at its origin. `to_device` (2 by 2, no offset) maps it to device pixels: in
/// GM_COMPATIBLE without mirroring, in GM_ADVANCED the whole transform of the DC.
struct TextDescription {
  std::shared_ptr<const TextFont> font;
  /// Of each unit of the text; empty: all are in `font`. Both halves of a surrogate pair have one.
  std::vector<std::shared_ptr<const TextFont>> fonts{};
  std::wstring text;           // UTF-16, or glyph indexes and kNoGlyph
  bool glyph_indexes = false;  // ETO_GLYPH_INDEX
  bool right_to_left = false;  // ETO_RTLREADING or TA_RTLREADING: reading order of the whole line
  bool in_order = false;       // ETO_IGNORELANGUAGE: units are not reordered
  double x = 0, y = 0;         // reference point, device pixels
  XFORM to_device{1, 0, 0, 1, 0, 0};
  UINT align = TA_LEFT | TA_TOP;  // TA_UPDATECP is up to the caller
  std::vector<double> dx;         // advance of each unit along the line, logical units; empty: the
                                  // font's own
  std::vector<double> dy;         // ETO_PDY: step of each unit across the line, upwards; or empty
  double break_extra = 0;         // added to each space in the font's own advances, logical units
  COLORREF colour = RGB(0, 0, 0);
  COLORREF background = RGB(255, 255, 255);  // of the opaque rectangle and the line's own cell
  std::optional<RECTL> opaque;               // ETO_OPAQUE: device pixels
};

}  // namespace quillo::host
