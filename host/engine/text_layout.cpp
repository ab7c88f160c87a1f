#include "host/engine/text_layout.h"

#include <cmath>
#include <numbers>

#include "host/engine/bidi.h"

namespace quillo::host {
namespace {

/// A direction turned counterclockwise by tenths of a degree, in a space with y downwards.
struct Turn {
  explicit Turn(LONG tenths)
      : cosine(std::cos(tenths * std::numbers::pi / 1800)),
        sine(std::sin(tenths * std::numbers::pi / 1800)) {
    // Quarter turns are exact, so that upright lines stay upright.
    if (tenths % 900 == 0) {
      cosine = std::round(cosine);
      sine = std::round(sine);
    }
  }
  PointD Apply(double x, double y) const { return {x * cosine + y * sine, y * cosine - x * sine}; }

  double cosine, sine;
};

PointD ToDevice(const XFORM& m, const PointD& p) {
  return {p.x * m.eM11 + p.y * m.eM21, p.x * m.eM12 + p.y * m.eM22};
}

/// How much of the line lies before the reference point.
double PartBefore(UINT align) {
  switch (align & TA_CENTER) {
    case TA_CENTER:
      return 0.5;
    case TA_RIGHT:
      return 1;
    default:
      return 0;
  }
}

/// How far the baseline lies below the reference point, in font units.
double BaselineBelow(UINT align, const TextFont& font) {
  switch (align & (TA_BASELINE | TA_BOTTOM)) {
    case TA_BASELINE:
      return 0;
    case TA_BOTTOM:
      return -font.Descent();
    default:
      return font.Ascent();
  }
}

}  // namespace

TextLayout LayOut(const TextDescription& text) {
  const TextFont& font = *text.font;
  const Turn line(font.Wanted().lfEscapement), glyph(font.Wanted().lfOrientation);
  const XFORM& m = text.to_device;
  TextLayout layout;
  const PointD right = ToDevice(m, glyph.Apply(font.ScaleX(), 0));
  const PointD down = ToDevice(m, glyph.Apply(0, font.ScaleY()));
  layout.font_to_device = {static_cast<float>(right.x),
                           static_cast<float>(right.y),
                           static_cast<float>(down.x),
                           static_cast<float>(down.y),
                           0,
                           0};

  for (const wchar_t unit : text.text) {
    layout.glyphs.push_back(text.glyph_indexes ? static_cast<USHORT>(unit) : font.GlyphOf(unit));
  }
  const bool fixed_order = text.glyph_indexes || text.in_order;
  const std::vector<size_t> order =
      fixed_order ? std::vector<size_t>{} : VisualOrder(text.text, text.right_to_left);

  // Along the line and above it, in logical units.
  std::vector<PointD> places(text.text.size());
  PointD at{0, 0};
  double natural = 0;  // where the page's font leads by itself, pixels
  if (font.Wanted().lfEscapement != font.Wanted().lfOrientation) layout.natural = false;
  const PointD along = ToDevice(m, line.Apply(1, 0));
  const double pixels = std::hypot(along.x, along.y);
  for (size_t place = 0; place < places.size(); ++place) {
    const size_t i = order.empty() ? place : order[place];
    places[i] = at;
    // A driver gets whole pixels, so that half a one is no difference.
    if (std::abs(at.x * pixels - natural) > 0.5) layout.natural = false;
    const double own = font.AdvanceOf(layout.glyphs[i]) * font.ScaleX();
    if (layout.natural) natural += font.AdvanceUnder(layout.font_to_device, layout.glyphs[i]);
    if (text.glyph_indexes && text.text[i] == kNoGlyph) layout.natural = false;
    const bool space = !text.glyph_indexes && text.text[i] == L' ';
    at.x += i < text.dx.size() ? text.dx[i]
                               : own + text.character_extra + (space ? text.break_extra : 0);
    if (i < text.dy.size() && text.dy[i] != 0) {
      at.y += text.dy[i];
      layout.natural = layout.straight = false;
    }
  }
  if (!order.empty() && order.size() > kGlyphsAtHand) layout.natural = false;
  if (!order.empty() && layout.natural) {
    const std::vector<USHORT> glyphs = layout.glyphs;
    const std::vector<PointD> in_text_order = places;
    for (size_t place = 0; place < order.size(); ++place) {
      layout.glyphs[place] = glyphs[order[place]];
      places[place] = in_text_order[order[place]];
    }
  }
  layout.length = at.x;

  // From the line to the page.
  const double shift = -layout.length * PartBefore(text.align);
  const double drop = BaselineBelow(text.align, font) * font.ScaleY();
  const auto on_page = [&](double x, double above) {
    const PointD device = ToDevice(m, line.Apply(x + shift, drop - above));
    return PointD{text.x + device.x, text.y + device.y};
  };
  for (const PointD& p : places) layout.origins.push_back(on_page(p.x, p.y));
  layout.start = on_page(0, 0);
  layout.end = on_page(layout.length, 0);
  layout.up = ToDevice(m, line.Apply(0, -font.ScaleY()));
  return layout;
}

}  // namespace quillo::host
