#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

#include "host/engine/brush_objects.h"
#include "host/engine/graphics.h"
#include "host/engine/raster_operation.h"
#include "host/engine/services/strings.h"
#include "host/engine/text_layout.h"

namespace quillo::host {
namespace {

/// Of more fonts than these, those that are closed are forgotten.
constexpr size_t kMaxKnownFonts = 500;

LONG Round(double value) { return static_cast<LONG>(std::lround(value)); }

/// The bounding rectangle of points, in whole pixels.
RECTL Around(std::span<const PointD> points) {
  double left = 1e9, top = 1e9, right = -1e9, bottom = -1e9;
  for (const PointD& p : points) {
    left = std::clamp(p.x, -1e9, left);
    top = std::clamp(p.y, -1e9, top);
    right = std::clamp(p.x, right, 1e9);
    bottom = std::clamp(p.y, bottom, 1e9);
  }
  return {Round(left), Round(top), Round(right), Round(bottom)};
}

bool Contains(const RECTL& outer, const RECTL& inner) {
  return outer.left <= inner.left && outer.top <= inner.top && outer.right >= inner.right &&
         outer.bottom >= inner.bottom;
}

/// Properties of the placement that let drivers take short cuts (SO_*).
FLONG Accelerators(const TextDescription& text, const TextLayout& layout) {
  FLONG accelerators = text.glyph_indexes ? SO_GLYPHINDEX_TEXTOUT : 0;
  if (layout.Natural()) accelerators |= SO_FLAG_DEFAULT_PLACEMENT;
  if (!layout.straight) return accelerators | SO_DXDY;
  const double dx = layout.end.x - layout.start.x, dy = layout.end.y - layout.start.y;
  if (layout.start.y == layout.end.y) {
    accelerators |= SO_HORIZONTAL | (dx < 0 ? SO_REVERSED : 0);
  } else if (layout.start.x == layout.end.x) {
    accelerators |= SO_VERTICAL | (dy < 0 ? SO_REVERSED : 0);
  }
  return accelerators;
}

}  // namespace

double Graphics::Text(const TextDescription& text, const DrawState& state) {
  const TextLayout layout = LayOut(text);
  const Quadrangle corners = CellOf(text, layout);
  const RECTL cell = Around(corners);

  // A driver that draws glyph by glyph repeats the opaque rectangle with each of them, which erases
  // the previous ones. So the rectangle is only passed along with a line that is drawn at once,
  // upright; for any other line, and if there are two rectangles, it is drawn before the text.
  const FLONG accelerators = Accelerators(text, layout);
  const bool at_once = (accelerators & (SO_FLAG_DEFAULT_PLACEMENT | SO_HORIZONTAL | SO_REVERSED)) ==
                           (SO_FLAG_DEFAULT_PLACEMENT | SO_HORIZONTAL) &&
                       layout.up.y < 0 && !text.text.empty() && text.text.size() <= kGlyphsAtHand;
  std::optional<RECTL> before = text.opaque, along;
  bool cell_before =
      state.opaque_background && !text.text.empty() && !(before && Contains(*before, cell));
  if (at_once) {
    if (std::exchange(cell_before, false)) {
      along = cell;
    } else {
      std::swap(before, along);
    }
  }
  const BrushDescription background = BrushDescription::Solid(text.background);
  if (before) BitBlt(*before, kPatternCopy, &background, nullptr, {}, state);
  if (cell_before) FillPolygon(corners, background, state);
  if (text.text.empty()) return 0;

  for (const GlyphRun& run : layout.runs) {
    // With a hint on the direction the driver would separate the halves of a pair.
    const FLONG placing = run.pair ? 0 : accelerators & ~FLONG{SO_FLAG_DEFAULT_PLACEMENT};
    DrawGlyphs(text, layout, run, placing | (run.natural ? SO_FLAG_DEFAULT_PLACEMENT : 0), cell,
               along, state);
  }

  // This kind of driver does not draw bars itself.
  const BrushDescription ink = BrushDescription::Solid(text.colour);
  for (const Quadrangle& bar : BarsOf(text, layout)) FillPolygon(bar, ink, state);
  return layout.length;
}

void Graphics::FillPolygon(const Quadrangle& corners, const BrushDescription& brush,
                           const DrawState& state) {
  DrawState copying = state;
  copying.rop2 = R2_COPYPEN;
  Fill(OutlineOf(corners), brush, FillMode::kAlternate, copying);
}

void Graphics::DrawGlyphs(const TextDescription& text, const TextLayout& layout,
                          const GlyphRun& run, FLONG accelerators, const RECTL& cell,
                          const std::optional<RECTL>& opaque, const DrawState& state) {
  const TextFont& font = *run.font;
  // Glyphs may extend beyond their cells, and may be placed outside of the line's.
  const double em = text.font->Metrics().fwdUnitsPerEm;
  const LONG reach = Round(std::min(em * (std::hypot(layout.up.x, layout.up.y)), 1e6)) + 1;
  RECTL bounds{cell.left - reach, cell.top - reach, cell.right + reach, cell.bottom + reach};
  for (size_t i = run.first; i < run.first + run.count; ++i) {
    const RECTL at = Around({&layout.origins[i], 1});
    bounds = {std::min(bounds.left, at.left - reach), std::min(bounds.top, at.top - reach),
              std::max(bounds.right, at.right + reach), std::max(bounds.bottom, at.bottom + reach)};
  }
  RECTL opaque_area = opaque.value_or(RECTL{});
  if (opaque) {
    bounds = {std::min(bounds.left, opaque_area.left), std::min(bounds.top, opaque_area.top),
              std::max(bounds.right, opaque_area.right),
              std::max(bounds.bottom, opaque_area.bottom)};
  }
  auto clip = ClipFor(bounds, state.clip);
  if (!clip) return;

  std::vector<GLYPHPOS> glyphs;
  std::wstring units;
  for (size_t i = run.first; i < run.first + run.count; ++i) {
    if (text.glyph_indexes && text.text[i] == kNoGlyph) continue;
    units += layout.shown[i];
    const RECTL at = Around({&layout.origins[i], 1});
    glyphs.push_back({layout.glyphs[i], nullptr, {at.left, at.top}});
  }
  if (glyphs.empty()) return;
  const size_t batch = glyphs.size() > kGlyphsAtHand ? kGlyphsAtHand : 0;
  StringObject string(std::move(glyphs), std::move(units), accelerators, cell, batch);
  FontObject realised(font.Metrics(), font.Names(), run.font_to_device, font.FontType());
  BrushObjects ink(BrushDescription::Solid(text.colour), driver_.RealizeBrush, surface_);
  BrushObjects background(BrushDescription::Solid(text.background), driver_.RealizeBrush, surface_);
  if (known_fonts_.size() > kMaxKnownFonts) {
    std::erase_if(known_fonts_, [](const auto& known) { return known.expired(); });
  }
  if (known_fonts_.insert(text.fonts.empty() ? text.font : text.fonts[run.first]).second &&
      driver_.GetGlyphMode != nullptr) {
    ++calls_.made["DrvGetGlyphMode"];
    driver_.GetGlyphMode(surface_.dhpdev, &realised);
  }
  POINTL origin = state.brush_origin;
  if (!Hook("DrvTextOut", driver_.TextOut, HOOK_TEXTOUT, &surface_, &string, &realised, &*clip,
            nullptr, opaque ? &opaque_area : nullptr, ink.Brush(),
            opaque ? background.Brush() : nullptr, &origin,
            static_cast<MIX>(R2_COPYPEN << 8 | R2_COPYPEN))) {
    return Refused("DrvTextOut");
  }
  calls_.glyph_texts.push_back(text.glyph_indexes);
}

}  // namespace quillo::host
