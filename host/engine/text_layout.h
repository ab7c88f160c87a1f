#pragma once

#include "base/ddi.h"

#include <array>
#include <vector>

#include "host/engine/path.h"
#include "host/engine/text.h"

namespace quillo::host {

struct PointD {
  double x, y;
};

/// Longer strings return their positions in batches, like those from the glyph cache of a real
/// engine.
inline constexpr size_t kGlyphsAtHand = 256;

/// Consecutive units of a line that are drawn by one call: of one font; a surrogate pair is a run
/// of its own, so that its halves stay together.
struct GlyphRun {
  size_t first, count;      // units of the text
  const TextFont* font;     // not null; kept by the line
  XFORML font_to_device{};  // font units, y downwards, to device pixels; no offset
  bool pair = false;        // its second unit has no glyph
  bool natural = true;      // every glyph is where the page's font places it by default
};

/// A line of text, laid out in device space.
///
/// The glyphs are in the order of the text, so that it can be read from the page. Only in a natural
/// run they are in the order of their places: it is drawn as a whole from its first place, and its
/// reader reorders the units.
struct TextLayout {
  std::wstring shown;  // the text, with brackets as they show where a run is read alone
  std::vector<USHORT> glyphs;
  std::vector<size_t> unit_of;  // of each glyph: its unit of the text
  std::vector<PointD> origins;  // of each glyph, on its baseline
  std::vector<GlyphRun> runs;   // one after the other in the text
  double length = 0;            // of the line, logical units
  PointD start{}, end{};        // of the baseline
  PointD up{};                  // across the line, per font unit above the baseline
  bool straight = true;         // no glyph leaves the line

  /// Whether the line is drawn as a whole.
  bool Natural() const { return runs.size() == 1 && runs.front().natural; }
  /// The point `units` font units above a point of the line.
  PointD Above(const PointD& point, double units) const {
    return {point.x + up.x * units, point.y + up.y * units};
  }
};

TextLayout LayOut(const TextDescription& text);

using Quadrangle = std::array<PointD, 4>;

/// What is drawn besides the glyphs: the cell of a line, its length by its font's height, and the
/// bars that underline it or strike it out.
Quadrangle CellOf(const TextDescription& text, const TextLayout& layout);
std::vector<Quadrangle> BarsOf(const TextDescription& text, const TextLayout& layout);
/// A closed figure, without what lies far from every sheet.
Path OutlineOf(const Quadrangle& corners);

}  // namespace quillo::host
