#include "host/cli/text_input.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "host/plain_text/decode.h"
#include "host/plain_text/font_chain.h"
#include "host/plain_text/line_breaker.h"

namespace quillo::host {

namespace {

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

/// The advance that the page's font has by itself, so that whole lines are drawn at once.
double AdvanceOnPage(const TextFont& font, wchar_t unit) {
  const XFORML font_to_device = {static_cast<float>(font.ScaleX()), 0, 0,
                                 static_cast<float>(font.ScaleY()), 0, 0};
  return font.AdvanceUnder(font_to_device, font.GlyphOf(unit));
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
    if (!fonts_) fonts_.emplace(std::max(1L, std::lround(kPoints * setup.dpi / 72.0)));
    const TextPage page = Measure(*fonts_->Main(), canvas.Size(), setup.dpi);
    DrawResult result;
    const size_t unknown_before = fonts_->UnknownCharacters();
    for (int i = 0; i < page.lines && !lines_.AtEnd(); ++i) {
      const TextLine line = lines_.Next(page.columns);
      DrawLine(line, page, page.top + i * page.line_height + page.ascent, canvas, result);
      if (line.ends_page) break;
    }
    const size_t unknown = fonts_->UnknownCharacters() - unknown_before;
    if (unknown != 0) {
      result.faults.push_back("no installed font has " + std::to_string(unknown) +
                              " of its characters");
    }
    return result;
  }

 private:
  /// Draws a line run by run: neighbours of one font go together. Wide characters stand as close as
  /// their font has them, since a gap would read as a blank; the next blank leads back to the
  /// cells.
  void DrawLine(const TextLine& line, const TextPage& page, double baseline, Graphics& canvas,
                DrawResult& result) {
    double x = page.left, cell_end = page.left;
    for (size_t at = 0; at < line.text.size();) {
      TextDescription run;
      run.font = fonts_->FontFor(line.text[at]);
      run.align = TA_LEFT | TA_BASELINE;
      run.x = x;
      run.y = baseline;
      for (bool on_cells = true; on_cells && at < line.text.size() && BelongsTo(run, line, at);
           ++at) {
        const wchar_t unit = line.text[at];
        double advance = line.columns[at] * page.cell_width;
        cell_end += advance;
        if (line.columns[at] == 2) advance = std::min(advance, AdvanceOnPage(*run.font, unit));
        run.text += unit;
        run.dx.push_back(advance);
        x += advance;
        if (unit == L' ' && x != cell_end) {
          x = cell_end;
          on_cells = false;  // the line goes on as a run of its own
        }
      }
      canvas.Text(run, DrawState());
      TakeDown(run, result);
    }
  }

  /// Marks stay with the character that they combine with.
  bool BelongsTo(const TextDescription& run, const TextLine& line, size_t at) {
    return line.columns[at] == 0 || fonts_->FontFor(line.text[at]) == run.font;
  }

  static void TakeDown(const TextDescription& run, DrawResult& result) {
    emf::FontUse& use = result.fonts[run.font->Wanted().lfFaceName];
    use.used = run.font->Family();
    use.substituted = run.font->Substituted();
    use.characters += run.text.size();
  }

  LineBreaker lines_;
  std::optional<FontChain> fonts_;
};

}  // namespace

std::unique_ptr<PrintInput> OpenText(std::vector<std::byte> content) {
  std::wstring text = DecodeText(content);
  if (text.find(L'\0') != std::wstring::npos) throw UnreadableInput("is no plain text");
  if (text.empty()) throw UnreadableInput("is empty");
  return std::make_unique<TextInput>(std::move(text));
}

}  // namespace quillo::host
