// Records that draw text, as UTF-16, in a code page, or as glyph indexes.

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <optional>
#include <utility>

#include "host/emf_player/emf_player.h"
#include "host/emf_player/record_fields.h"
#include "host/emf_player/record_handlers.h"
#include "host/emf_player/region_data.h"
#include "host/emf_player/rounding.h"
#include "host/emf_player/text_line.h"
#include "host/emf_player/text_outline.h"
#include "host/engine/clusters.h"
#include "host/engine/symbol_encodings.h"

namespace quillo::host::emf {

namespace {

// The glyph order that most fonts share: ASCII at character - 29. Other glyphs differ.
constexpr wchar_t kCommonShift = 29;
constexpr wchar_t kFirstCommon = L' ' - kCommonShift, kLastCommon = L'~' - kCommonShift;

bool KeepsCommonOrder(const TextFont& font) {
  for (wchar_t glyph = kFirstCommon; glyph <= kLastCommon; ++glyph) {
    if (font.GlyphOf(static_cast<wchar_t>(glyph + kCommonShift)) != glyph) return false;
  }
  return true;
}

/// Replaces glyph indexes that need not mean the same glyph in `font` by kNoGlyph; returns how
/// many. In a substitute these are all outside the common order.
size_t DropUncertainGlyphs(std::wstring& glyphs, const TextFont& font, GlyphOrder order) {
  if (!font.Substituted()) return 0;
  const bool readable = font.Map().invertible;  // otherwise the page would hold no characters
  if (readable && order == GlyphOrder::kAssume) return 0;
  const bool common = readable && order == GlyphOrder::kAsSubstitute && KeepsCommonOrder(font);
  const auto is_uncertain = [common](wchar_t glyph) {
    return !common || glyph < kFirstCommon || glyph > kLastCommon;
  };
  const auto dropped = std::ranges::count_if(glyphs, is_uncertain);
  std::ranges::replace_if(glyphs, is_uncertain, kNoGlyph);
  return static_cast<size_t>(dropped);
}

/// Replaces each unit of a line by a character; leaves the line alone when one has none.
template <typename CharacterOf>
bool ReplaceUnits(TextLine& line, CharacterOf character_of) {
  std::wstring text;
  std::vector<double> dx, dy;
  for (size_t i = 0; i < line.text.size(); ++i) {
    const std::optional<char32_t> character = character_of(line.text[i]);
    if (!character) return false;
    AppendCharacter(text, *character);
    if (i < line.dx.size()) dx.push_back(line.dx[i]);
    if (i < line.dy.size()) dy.push_back(line.dy[i]);
    if (!dx.empty()) dx.resize(text.size());
    if (!dy.empty()) dy.resize(text.size());
  }
  line.text = std::move(text);
  line.dx = std::move(dx);
  line.dy = std::move(dy);
  return true;
}

/// Replaces the codes of a symbol font that is not installed by Unicode characters, and the glyph
/// indexes of an installed font that the driver could not turn back.
void ReplaceCodes(TextLine& line, const TextFont& font) {
  if ((line.options & ETO_GLYPH_INDEX) == 0) {
    ReplaceUnits(line, [&](wchar_t code) -> std::optional<char32_t> {
      const bool shown = font.Map().symbols && font.GlyphOf(code) != 0;
      const char32_t character = shown ? 0 : UnicodeOfSymbol(font.Wanted().lfFaceName, code);
      return character != 0 ? character : code;
    });
    return;
  }
  if (font.Map().invertible || font.Substituted()) return;
  if (ReplaceUnits(line, [&](wchar_t glyph) { return font.CharacterOf(glyph); })) {
    // Glyphs come in the order of their places.
    line.options = (line.options & ~uint32_t{ETO_GLYPH_INDEX}) | ETO_IGNORELANGUAGE;
  }
}

/// The part of the line's text that can be drawn. Counts it in the font's use.
std::wstring DrawableText(EmfPlayer& player, const TextLine& line, TextDescription& text) {
  if (line.text.empty()) return {};
  const TextFont& font = *text.font;
  FontUse& use = player.UseOf(font.Wanted().lfFaceName);
  use.used = font.Family();
  use.substituted = font.Substituted();
  use.reversible = font.Map().invertible;
  if ((line.options & ETO_GLYPH_INDEX) == 0) {
    FontChoice choice = player.fonts().Choose(text.font, line.text);
    use.characters += line.text.size() - choice.in_others - choice.missing;
    use.in_others += choice.in_others;
    use.missing += choice.missing;
    text.fonts = std::move(choice.fonts);
    return line.text;
  }
  std::wstring glyphs = line.text;
  const size_t dropped = DropUncertainGlyphs(glyphs, font, player.options().glyph_order);
  const size_t drawn = glyphs.size() - dropped;
  use.dropped_glyphs += dropped;
  (font.Substituted() ? use.assumed_glyphs : use.characters) += drawn;
  if (drawn != 0) return glyphs;
  player.NotCarried();
  return {};
}

/// By how much the reference device stretched a line's glyphs horizontally.
///
/// On a device whose pixels are not square, fonts without an explicit width keep their shape on
/// paper. But some headers just have wrong millimetres, and the pixels were square. The recorded
/// advances decide: they are either those of the font or stretched by the pixels' aspect.
double Widening(const EmfPlayer& player, const TextLine& line, const TextDescription& text) {
  const LOGFONTW& wanted = text.font->Wanted();
  if (line.advanced || !player.ToPage().KeepsAxes() || wanted.lfWidth != 0 ||
      wanted.lfEscapement % 1800 != 0) {
    return 1;
  }
  double own = 0, recorded = 0;
  for (size_t i = 0; i < std::min(text.text.size(), line.dx.size()); ++i) {
    recorded += line.dx[i];
    const wchar_t unit = text.text[i];
    const TextFont& font = text.fonts.empty() ? *text.font : *text.fonts[i];
    if (text.glyph_indexes) {
      if (unit == kNoGlyph) recorded -= line.dx[i];
      own += unit == kNoGlyph ? 0 : font.AdvanceOf(unit) * font.ScaleX();
    } else if (!IS_LOW_SURROGATE(unit)) {
      own += font.AdvanceOf(font.GlyphOf(CharacterAt(text.text, i))) * font.ScaleX();
    }
  }
  const double shape = player.PixelAspect();
  if (own <= 0 || recorded <= 0) return 1;
  const double widened = std::log(recorded / own);
  return std::abs(widened - std::log(shape)) < std::abs(widened) ? shape : 1;
}

/// From logical units to the page, for text. Never mirrors in the compatible graphics mode.
XFORM TextTransform(const EmfPlayer& player, bool advanced, double widening) {
  const Transform& map = player.ToPage();
  const auto number = [](double value) { return static_cast<float>(value); };
  if (!advanced && map.KeepsAxes()) {
    return {number(std::fabs(map.m11) * widening), 0, 0, number(std::fabs(map.m22)), 0, 0};
  }
  return {number(map.m11), number(map.m12), number(map.m21), number(map.m22), 0, 0};
}

/// Applies the line's rectangle as background and as clip. A background that is not upright is
/// drawn at once.
void ApplyRectangle(EmfPlayer& player, const TextLine& line, TextDescription& text,
                    DrawState& drawing) {
  if ((line.options & kNoRectangle) != 0) return;
  const Transform& map = player.ToPage();
  const RectL& rect = line.rectangle;
  if ((line.options & ETO_OPAQUE) != 0) {
    if (map.KeepsAxes()) {
      text.opaque = ToPixelRect(map, rect.left, rect.top, rect.right, rect.bottom);
    } else {
      player.canvas().Paint(MapRectangle(rect, map), BrushDescription::Solid(text.background),
                            drawing);
    }
  }
  if ((line.options & ETO_CLIPPED) != 0) {
    drawing.clip = drawing.clip.Combined(MapRectangle(rect, map), RGN_AND);
  }
}

/// Moves the current position to the end of a line of this length.
void MoveToEnd(EmfPlayer& player, const TextLine& line, double length) {
  const UINT align = player.state().text_align;
  if ((align & TA_UPDATECP) == 0 || (align & TA_CENTER) == TA_CENTER) return;
  const double along = (align & TA_CENTER) == TA_RIGHT ? -length : length;
  const double above = std::accumulate(line.dy.begin(), line.dy.end(), 0.0);
  const double angle = player.state().font->font.lfEscapement * std::numbers::pi / 1800;
  const double cosine = std::cos(angle), sine = std::sin(angle);
  PointL& position = player.state().position;
  position.x = ToPixel(position.x + along * cosine - above * sine);
  position.y = ToPixel(position.y - along * sine - above * cosine);
}

void DrawLine(EmfPlayer& player, TextLine line) {
  const DcState& state = player.state();
  TextDescription text;
  LOGFONTW font = state.font->font;
  if (!line.advanced)
    font.lfOrientation = font.lfEscapement;  // the compatible mode has a single angle
  text.font = player.fonts().Find(font);
  if (text.font == nullptr) {
    player.Fault("no font for its text");
    return;
  }
  text.background = player.Resolve(state.background_colour);
  DrawState drawing = player.Drawing();
  drawing.rop2 = R2_COPYPEN;
  if (!player.path().IsOpen()) ApplyRectangle(player, line, text, drawing);
  ReplaceCodes(line, *text.font);
  text.text = DrawableText(player, line, text);
  if (text.text.empty() && !text.opaque) return;

  const PointL& reference = (state.text_align & TA_UPDATECP) != 0 ? state.position : line.reference;
  const PointD at = player.ToPage().Apply(reference.x, reference.y);
  text.x = at.x;
  text.y = at.y;
  text.glyph_indexes = (line.options & ETO_GLYPH_INDEX) != 0;
  text.right_to_left =
      (line.options & ETO_RTLREADING) != 0 || (state.text_align & TA_RTLREADING) != 0;
  text.in_order = (line.options & ETO_IGNORELANGUAGE) != 0;
  text.align = state.text_align;
  if (state.break_count != 0) {
    text.break_extra = static_cast<double>(state.break_extra) / state.break_count;
  }
  const double widening = Widening(player, line, text);
  text.to_device = TextTransform(player, line.advanced, widening);
  text.dx = line.dx;
  text.dy = line.dy;
  for (double& advance : text.dx) advance /= widening;
  text.colour = player.Resolve(state.text_colour);
  if (player.path().IsOpen()) {
    const TextLayout layout = LayOut(text);
    player.DrawOutline(TextOutline(layout), true);
    MoveToEnd(player, line, layout.length * widening);
  } else {
    MoveToEnd(player, line, player.canvas().Text(text, drawing) * widening);
  }
}

template <bool wide>
void PlayExtTextOut(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  const bool advanced = record.Read<uint32_t>() == GM_ADVANCED;
  record.Skip(8);  // millimetres per unit, in the compatible mode
  TextLine line = ReadTextLine(player, record, advanced, wide);
  if (record.ok()) DrawLine(player, std::move(line));
}

template <bool wide>
void PlayPolyTextOut(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  const bool advanced = record.Read<uint32_t>() == GM_ADVANCED;
  record.Skip(8);  // millimetres per unit, in the compatible mode
  const auto count = record.Read<uint32_t>();
  size_t characters = 0;
  for (uint32_t i = 0; i < count; ++i) {
    TextLine line = ReadTextLine(player, record, advanced, wide);
    if (!record.ok()) return;
    characters += line.text.size();
    if (characters > record.record().size()) {
      player.Fault("its strings overlap");
      return;
    }
    DrawLine(player, std::move(line));
  }
}

void PlaySmallTextOut(EmfPlayer& player, PayloadReader& record) {
  TextLine line;
  line.reference = record.Read<PointL>();
  const auto count = record.Read<uint32_t>();
  line.options = record.Read<uint32_t>();
  line.advanced = record.Read<uint32_t>() == GM_ADVANCED;
  record.Skip(8);  // millimetres per unit, in the compatible mode
  if ((line.options & kNoRectangle) == 0) line.rectangle = record.Read<RectL>();
  const size_t offset = record.record().size() - record.left();
  ReadCharacters(player, record, offset, count, (line.options & kSmallCharacters) == 0, line);
  if (record.ok()) DrawLine(player, std::move(line));
}

}  // namespace

void AddTextHandlers(HandlerTable& table) {
  table[kEmrEXTTEXTOUTW] = PlayExtTextOut<true>;
  table[kEmrEXTTEXTOUTA] = PlayExtTextOut<false>;
  table[kEmrPOLYTEXTOUTW] = PlayPolyTextOut<true>;
  table[kEmrPOLYTEXTOUTA] = PlayPolyTextOut<false>;
  table[kEmrSMALLTEXTOUT] = PlaySmallTextOut;
}

}  // namespace quillo::host::emf
