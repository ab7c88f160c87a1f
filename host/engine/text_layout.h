#pragma once

#include "base/ddi.h"

#include <vector>

#include "host/engine/text.h"

namespace quillo::host {

struct PointD {
  double x, y;
};

/// A line of text, laid out in device space.
struct TextLayout {
  std::vector<USHORT> glyphs;
  std::vector<PointD> origins;  // of each glyph, on its baseline
  double length = 0;            // of the line, logical units
  PointD start{}, end{};        // of the baseline
  PointD up{};                  // across the line, for each font unit above the baseline
  bool natural = true;          // every glyph stands where the font's own advances put it
  bool straight = true;         // no glyph leaves the line
  XFORML font_to_device{};      // font units, y downwards, to device pixels; no offset

  /// The point `units` font units above a point of the line.
  PointD Above(const PointD& point, double units) const {
    return {point.x + up.x * units, point.y + up.y * units};
  }
};

TextLayout LayOut(const TextDescription& text);

}  // namespace quillo::host
