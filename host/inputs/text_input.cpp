#include "host/inputs/text_input.h"

#include <algorithm>
#include <cmath>

#include "host/engine/clusters.h"
#include "host/engine/font_cache.h"
#include "host/plain_text/decode.h"
#include "host/plain_text/line_breaker.h"

namespace quillo::host {

namespace {

constexpr wchar_t kFace[] = L"Courier New";
constexpr int kPoints = 10;            // size of the characters
constexpr double kMargin = 20 / 25.4;  // inches, on each side; at most a tenth of the sheet

/// Measures of a page of text, in device pixels.
struct TextPage {
  double left, top;
  double cell_width;
  double line_height;
  double ascent;
  int columns;
  int lines;
};

/// The advance of a character in the page's own font, in device pixels: text with these advances is
/// drawn a whole line at a time.
double AdvanceOnPage(const TextFont& font, char32_t character) {
  const XFORML font_to_device = {static_cast<float>(font.ScaleX()), 0, 0,
                                 static_cast<float>(font.ScaleY()), 0, 0};
  return font.AdvanceUnder(font_to_device, font.GlyphOf(character));
}

TextPage Measure(const TextFont& font, SIZEL page, int dpi) {
  const auto margin = [dpi](LONG side) { return std::min(kMargin * dpi, side / 10.0); };
  const double left = margin(page.cx), top = margin(page.cy);
  const double cell_width = AdvanceOnPage(font, L'0');
  const double ascent = font.Ascent() * font.ScaleY();
  const double line_height = ascent + font.Descent() * font.ScaleY();
  const auto fitting = [](double room, double size) {
    return std::max(1, static_cast<int>(room / std::max(size, 1.0)));
  };
  return {left,
          top,
          cell_width,
          line_height,
          ascent,
          fitting(page.cx - 2 * left, cell_width),
          fitting(page.cy - 2 * top, line_height)};
}

class TextInput : public PrintInput {
 public:
  explicit TextInput(std::wstring text) : lines_(std::move(text)) {}

  bool PreparePage() override { return !lines_.AtEnd(); }

  DrawResult DrawPage(Graphics& canvas, const PageSetup& setup) override {
    LOGFONTW wanted{};
    wanted.lfHeight = -std::max(1L, std::lround(kPoints * setup.dpi / 72.0));
    wanted.lfCharSet = DEFAULT_CHARSET;
    wanted.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
    wcscpy(wanted.lfFaceName, kFace);
    const FontChoice::Font font = fonts_.Find(wanted);
    if (font == nullptr) throw UnreadableInput("cannot be printed: there is no font for it");
    const TextPage page = Measure(*font, canvas.Size(), setup.dpi);
    DrawResult result;
    for (int i = 0; i < page.lines && !lines_.AtEnd(); ++i) {
      const TextLine line = lines_.Next(page.columns);
      if (!line.text.empty()) {
        const double baseline = page.top + i * page.line_height + page.ascent;
        canvas.Text(Describe(line, font, page, baseline, result), DrawState());
      }
      if (line.ends_page) return result;
    }
    lines_.SkipFormFeed();
    return result;
  }

 private:
  /// Characters are placed on the page's cells. Those of other fonts keep their own, narrower
  /// advances, since a gap would read as a blank and letters may join; the next blank ends where
  /// its cell does.
  TextDescription Describe(const TextLine& line, const FontChoice::Font& font, const TextPage& page,
                           double baseline, DrawResult& result) {
    FontChoice choice = fonts_.Choose(font, line.text);
    FontUse& use = result.fonts[font->Wanted().lfFaceName];
    use.used = font->Family();
    use.substituted = font->Substituted();
    use.characters += line.text.size() - choice.in_others - choice.missing;
    use.missing += choice.missing;

    TextDescription text;
    text.font = font;
    text.text = line.text;
    text.right_to_left = line.right_to_left;
    text.align = TA_BASELINE | (line.right_to_left ? TA_RIGHT : TA_LEFT);
    text.x = page.left + (line.right_to_left ? page.columns * page.cell_width : 0);
    text.y = baseline;
    double at = 0, cell_end = 0;
    for (size_t i = 0; i < line.text.size(); ++i) {
      double advance = line.columns[i] * page.cell_width;
      cell_end += advance;
      const bool in_other = !choice.fonts.empty() && choice.fonts[i] != font;
      if (line.text[i] == L' ') {
        advance = cell_end - at;
      } else if (in_other && advance != 0) {
        const char32_t character = CharacterAt(line.text, i);
        advance = std::min(advance, AdvanceOnPage(*choice.fonts[i], character));
      }
      at += advance;
      text.dx.push_back(advance);
    }
    if (!choice.fonts.empty()) CountOthers(choice, font, result);
    text.fonts = std::move(choice.fonts);
    return text;
  }

  /// Counts the characters that other fonts show.
  static void CountOthers(const FontChoice& choice, const FontChoice::Font& font,
                          DrawResult& result) {
    for (const FontChoice::Font& other : choice.fonts) {
      if (other == font) continue;
      FontUse& use = result.fonts[other->Wanted().lfFaceName];
      use.used = other->Family();
      use.substituted = other->Substituted();
      ++use.characters;
    }
  }

  LineBreaker lines_;
  FontCache fonts_;
};

}  // namespace

std::unique_ptr<PrintInput> OpenText(std::vector<std::byte> content) {
  std::wstring text = DecodeText(content);
  if (text.find(L'\0') != std::wstring::npos) throw UnreadableInput("is not plain text");
  if (text.empty()) throw UnreadableInput("is empty");
  return std::make_unique<TextInput>(Compose(text));
}

}  // namespace quillo::host
