#include "host/engine/text_layout.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <optional>
#include <utility>

#include "host/engine/bidi.h"
#include "host/engine/clusters.h"
#include "host/engine/far_path.h"

namespace quillo::host {
namespace {

/// A counterclockwise rotation by tenths of a degree, in a space with y downwards.
struct Turn {
  explicit Turn(LONG tenths_of_degree)
      : tenths(tenths_of_degree),
        cosine(std::cos(tenths * std::numbers::pi / 1800)),
        sine(std::sin(tenths * std::numbers::pi / 1800)) {
    // Quarter turns are exact, so that upright lines stay upright.
    if (tenths % 900 == 0) {
      cosine = std::round(cosine);
      sine = std::round(sine);
    }
  }
  PointD Apply(double x, double y) const { return {x * cosine + y * sine, y * cosine - x * sine}; }

  LONG tenths;
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

/// Lays out one line.
class LineLayout {
 public:
  explicit LineLayout(const TextDescription& text)
      : text_(text),
        line_(text.font->Wanted().lfEscapement),
        glyph_(text.font->Wanted().lfOrientation) {
    layout_.shown = text.text;
    const PointD along = ToDevice(text.to_device, line_.Apply(1, 0));
    pixels_ = std::hypot(along.x, along.y);
  }

  TextLayout Make() {
    FindGlyphs();
    Order();
    Place();
    layout_.unit_of.resize(text_.text.size());
    std::iota(layout_.unit_of.begin(), layout_.unit_of.end(), size_t{0});
    CutIntoRuns();
    if (!order_as_read_) CutEndsOff();
    for (GlyphRun& run : layout_.runs) {
      run.font_to_device = FontToDevice(*run.font);
      run.natural = run.pair || IsNatural(run);
      MirrorBrackets(run);
    }
    PutOnPage();
    for (const GlyphRun& run : layout_.runs) {
      if (run.natural && !run.pair) SortByPlace(run);
    }
    return std::move(layout_);
  }

 private:
  const TextFont& FontOf(size_t unit) const {
    return text_.fonts.empty() ? *text_.font : *text_.fonts[unit];
  }
  bool PairAt(size_t unit) const { return !text_.glyph_indexes && IsPair(text_.text, unit); }
  size_t PlaceOf(size_t unit) const { return place_of_.empty() ? unit : place_of_[unit]; }

  XFORML FontToDevice(const TextFont& font) const {
    const PointD right = ToDevice(text_.to_device, glyph_.Apply(font.ScaleX(), 0));
    const PointD down = ToDevice(text_.to_device, glyph_.Apply(0, font.ScaleY()));
    return {static_cast<float>(right.x),
            static_cast<float>(right.y),
            static_cast<float>(down.x),
            static_cast<float>(down.y),
            0,
            0};
  }

  void FindGlyphs() {
    for (size_t i = 0; i < text_.text.size(); ++i) {
      const wchar_t unit = text_.text[i];
      if (text_.glyph_indexes) {
        layout_.glyphs.push_back(unit);
        continue;
      }
      layout_.glyphs.push_back(FontOf(i).GlyphOf(CharacterAt(text_.text, i)));
      if (!PairAt(i)) continue;
      layout_.glyphs.push_back(kNoGlyph);
      ++i;
    }
  }

  void Order() {
    if (text_.glyph_indexes) return;
    const LineOrder as_read = OrderLine(text_.text, false);
    if (!text_.in_order) {
      LineOrder order = text_.right_to_left ? OrderLine(text_.text, true) : as_read;
      order_ = std::move(order.units);
      leftwards_ = std::move(order.leftwards);
    }
    order_as_read_ = order_ == as_read.units;
    place_of_.resize(order_.size());
    for (size_t place = 0; place < order_.size(); ++place) place_of_[order_[place]] = place;
  }

  /// Places the units along the line and above it, in logical units.
  void Place() {
    places_.resize(text_.text.size());
    PointD at{0, 0};
    for (size_t place = 0; place < places_.size(); ++place) {
      const size_t i = order_.empty() ? place : order_[place];
      places_[i] = at;
      at.x += AdvanceOf(i);
      if (i < text_.dy.size() && text_.dy[i] != 0) {
        at.y += text_.dy[i];
        layout_.straight = false;
      }
    }
    layout_.length = at.x;
  }

  double OwnAdvanceOf(size_t i) const {
    return FontOf(i).AdvanceOf(layout_.glyphs[i]) * FontOf(i).ScaleX();
  }

  double AdvanceOf(size_t i) const {
    if (i < text_.dx.size()) return text_.dx[i];
    if (!text_.glyph_indexes && layout_.glyphs[i] == kNoGlyph) return 0;
    const bool space = !text_.glyph_indexes && text_.text[i] == L' ';
    return OwnAdvanceOf(i) + (space ? text_.break_extra : 0);
  }

  void CutIntoRuns() {
    for (size_t i = 0; i < text_.text.size(); ++i) {
      const bool pair = PairAt(i);
      if (layout_.runs.empty() || pair || CutsBefore(i)) {
        layout_.runs.push_back({i, 0, &FontOf(i)});
        layout_.runs.back().pair = pair;
      }
      layout_.runs.back().count += pair ? 2 : 1;
      if (pair) ++i;
    }
  }

  bool CutsBefore(size_t i) const {
    const GlyphRun& run = layout_.runs.back();
    if (run.pair || run.font != &FontOf(i)) return true;
    // After a widened blank the text is natural again.
    const bool filled = std::abs(AdvanceOf(i - 1) - OwnAdvanceOf(i - 1)) * pixels_ > 0.5;
    if (!text_.fonts.empty() && text_.text[i - 1] == L' ' && filled) return true;
    if (order_as_read_) return false;
    const bool leftwards = PlaceOf(i) + 1 == PlaceOf(i - 1);
    if (!leftwards && PlaceOf(i) != PlaceOf(i - 1) + 1) return true;
    return run.count > 1 && leftwards != RunsLeftwards(run);
  }

  bool RunsLeftwards(const GlyphRun& run) const {
    return PlaceOf(run.first + run.count - 1) < PlaceOf(run.first);
  }

  /// Separates characters other than letters, such as a full stop, from the ends of runs from right
  /// to left: a reader that starts from the left would put them at the other end.
  void CutEndsOff() {
    std::vector<GlyphRun> runs;
    const auto add = [&](const GlyphRun& run, size_t first, size_t end) {
      if (first == end) return;
      runs.push_back(run);
      runs.back().first = first;
      runs.back().count = end - first;
    };
    for (const GlyphRun& run : layout_.runs) {
      const size_t end = run.first + run.count;
      size_t head = run.first, tail = end;
      if (run.count > 1 && !run.pair && RunsLeftwards(run)) {
        const auto is_letter = [&](size_t i) {
          return IsLeftwardLetter(text_.text[i]) || IsMark(text_.text[i]);
        };
        while (head < end && !is_letter(head)) ++head;
        while (tail > head && !is_letter(tail - 1)) --tail;
      }
      add(run, run.first, head);
      add(run, head, tail);
      add(run, tail, end);
    }
    layout_.runs = std::move(runs);
  }

  /// The units of a run in the order of their places, counted from the run's first unit; empty: as
  /// in the text. Nothing when there are other units between them.
  std::optional<std::vector<size_t>> OrderWithin(const GlyphRun& run) const {
    std::vector<size_t> units(run.count);
    std::iota(units.begin(), units.end(), size_t{0});
    std::ranges::sort(units, {}, [&](size_t i) { return PlaceOf(run.first + i); });
    const size_t span = PlaceOf(run.first + units.back()) - PlaceOf(run.first + units.front()) + 1;
    if (span != run.count) return {};
    return std::ranges::is_sorted(units) ? std::vector<size_t>{} : units;
  }

  bool IsNatural(const GlyphRun& run) const {
    if (!layout_.straight || line_.tenths != glyph_.tenths) return false;
    const auto order = OrderWithin(run);
    if (!order || (!order->empty() && run.count > kGlyphsAtHand)) return false;
    if (!text_.glyph_indexes &&
        OrderLine(text_.text.substr(run.first, run.count), false).units != *order) {
      return false;
    }
    double natural = 0;  // position by the advances of the page's font, pixels
    double start = 0;
    for (size_t place = 0; place < run.count; ++place) {
      const size_t i = run.first + (order->empty() ? place : (*order)[place]);
      if (place == 0) start = places_[i].x;
      // A driver gets whole pixels, so half a pixel makes no difference.
      if (std::abs((places_[i].x - start) * pixels_ - natural) > 0.5) return false;
      if (layout_.glyphs[i] == kNoGlyph) return false;
      natural += run.font->AdvanceUnder(run.font_to_device, layout_.glyphs[i]);
    }
    return true;
  }

  /// Mirrors the brackets that run from right to left where a reader of the run alone would not
  /// know.
  void MirrorBrackets(const GlyphRun& run) {
    if (leftwards_.empty() || run.pair) return;
    std::vector<bool> known;
    if (run.natural) {
      known = OrderLine(text_.text.substr(run.first, run.count), false).leftwards;
    }
    known.resize(run.count);
    for (size_t k = 0; k < run.count; ++k) {
      const size_t i = run.first + k;
      if (!leftwards_[i] || known[k]) continue;
      const wchar_t mirrored = Mirrored(text_.text[i]);
      if (mirrored == text_.text[i]) continue;
      layout_.shown[i] = mirrored;
      layout_.glyphs[i] = run.font->GlyphOf(mirrored);
    }
  }

  void PutOnPage() {
    const TextFont& font = *text_.font;
    const double shift = -layout_.length * PartBefore(text_.align);
    const double drop = BaselineBelow(text_.align, font) * font.ScaleY();
    const auto on_page = [&](double x, double above) {
      const PointD device = ToDevice(text_.to_device, line_.Apply(x + shift, drop - above));
      return PointD{text_.x + device.x, text_.y + device.y};
    };
    for (const PointD& p : places_) layout_.origins.push_back(on_page(p.x, p.y));
    layout_.start = on_page(0, 0);
    layout_.end = on_page(layout_.length, 0);
    layout_.up = ToDevice(text_.to_device, line_.Apply(0, -font.ScaleY()));
  }

  void SortByPlace(const GlyphRun& run) {
    const auto order = OrderWithin(run);
    if (!order || order->empty()) return;
    const std::vector<USHORT> glyphs = layout_.glyphs;
    const std::vector<PointD> origins = layout_.origins;
    for (size_t place = 0; place < run.count; ++place) {
      const size_t unit = run.first + (*order)[place];
      layout_.glyphs[run.first + place] = glyphs[unit];
      layout_.origins[run.first + place] = origins[unit];
      layout_.unit_of[run.first + place] = unit;
    }
  }

  const TextDescription& text_;
  const Turn line_, glyph_;
  double pixels_;                 // per logical unit along the line
  std::vector<size_t> order_;     // the unit at each place; empty: as in the text
  std::vector<size_t> place_of_;  // of each unit; empty likewise
  std::vector<bool> leftwards_;   // of each unit; empty: none
  bool order_as_read_ = true;     // as a reader orders it that starts from the left
  std::vector<PointD> places_;    // of each unit
  TextLayout layout_;
};

}  // namespace

TextLayout LayOut(const TextDescription& text) { return LineLayout(text).Make(); }

Quadrangle CellOf(const TextDescription& text, const TextLayout& layout) {
  const double ascent = text.font->Ascent(), descent = text.font->Descent();
  return {layout.Above(layout.start, ascent), layout.Above(layout.end, ascent),
          layout.Above(layout.end, -descent), layout.Above(layout.start, -descent)};
}

std::vector<Quadrangle> BarsOf(const TextDescription& text, const TextLayout& layout) {
  std::vector<Quadrangle> bars;
  const auto add = [&](const TextFont::Bar& bar) {
    // At least a pixel thick; the position is that of the bar's upper edge.
    const double min_thickness = 1 / std::max(std::hypot(layout.up.x, layout.up.y), 1e-6);
    const double bottom = bar.position - std::max<double>(bar.thickness, min_thickness);
    bars.push_back({layout.Above(layout.start, bar.position),
                    layout.Above(layout.end, bar.position), layout.Above(layout.end, bottom),
                    layout.Above(layout.start, bottom)});
  };
  const LOGFONTW& wanted = text.font->Wanted();
  if (wanted.lfUnderline != 0) add(text.font->Underline());
  if (wanted.lfStrikeOut != 0) add(text.font->StrikeOut());
  return bars;
}

Path OutlineOf(const Quadrangle& corners) {
  Path outline;
  outline.MoveTo(corners[0].x, corners[0].y);
  for (size_t i = 1; i < corners.size(); ++i) outline.LineTo(corners[i].x, corners[i].y);
  outline.CloseFigure();
  return NearInside(outline);
}

}  // namespace quillo::host
