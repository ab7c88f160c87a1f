#include <algorithm>
#include <cmath>

#include "host/engine/font_cache.h"
#include "tests/host/engine/graphics_fixture.h"

namespace quillo::host {
namespace {

/// An installed font whose letters and figures have the same width: 0.6001 of its size.
LOGFONTW FixedPitch(LONG height) {
  LOGFONTW font{};
  font.lfHeight = height;
  wcscpy(font.lfFaceName, L"Liberation Mono");
  return font;
}

class TextTest : public GraphicsTest {
 protected:
  static TextDescription Line(std::wstring text, const LOGFONTW& font = FixedPitch(-10)) {
    TextDescription line;
    line.font = std::make_shared<TextFont>(font);
    line.text = std::move(text);
    line.x = 50;
    line.y = 40;
    line.align = TA_BASELINE;
    return line;
  }
  static DrawState Transparent() {
    DrawState state;
    state.opaque_background = false;
    return state;
  }
};

TEST_F(TextTest, RightToLeft_PutsUnitsInTheirPlaces) {
  // Units in text order; a driver gets the places of a natural line from the left.
  const std::wstring hebrew = L"a\x05D0\x05D1";
  TextDescription line = Line(hebrew);
  TextLayout layout = LayOut(line);
  EXPECT_TRUE(layout.Natural());
  EXPECT_LT(layout.origins[0].x, layout.origins[1].x);
  EXPECT_LT(layout.origins[1].x, layout.origins[2].x);

  line.dx = {8, 9, 10};
  layout = LayOut(line);
  EXPECT_FALSE(layout.Natural());
  EXPECT_EQ(layout.origins[0].x, 50);
  EXPECT_EQ(layout.origins[1].x, 68);  // after the third unit
  EXPECT_EQ(layout.origins[2].x, 58);
  line.right_to_left = true;
  EXPECT_EQ(LayOut(line).origins[0].x, 69);
  line.in_order = true;
  EXPECT_EQ(LayOut(line).origins[0].x, 50);
}

TEST_F(TextTest, RightToLeft_ComesInRunsThatReadAlikeFromTheLeft) {
  TextDescription line = Line(L"\x05D0\x05D1)");
  line.right_to_left = true;
  const TextLayout layout = LayOut(line);
  ASSERT_EQ(layout.runs.size(), 2u);
  EXPECT_EQ(layout.shown, L"\x05D0\x05D1(");
  EXPECT_EQ(layout.glyphs[2], line.font->GlyphOf(L'('));
  for (const GlyphRun& run : layout.runs) EXPECT_TRUE(run.natural);
  EXPECT_NEAR(layout.origins[0].x, 56, 0.01);  // the second letter
  EXPECT_NEAR(layout.origins[1].x, 62, 0.01);
  EXPECT_EQ(layout.origins[2].x, 50);
}

TEST_F(TextTest, LongString_ComesInBatches) {
  Page().Text(Line(std::wstring(600, L'x'), FixedPitch(-1)), Transparent());
  const std::string& call = driver_.calls.back();
  EXPECT_EQ(std::ranges::count(call, ','), 2 + 3 + 3 * 4) << call;  // 4 places of each batch
}

TEST(TextFont, Metrics_AreThoseOfTheInstalledFont) {
  // A cell has 0.8333 above and 0.3 below the baseline, of the size.
  EXPECT_NEAR(TextFont(FixedPitch(1133)).ScaleY() * 2048, 1000, 2);
  LOGFONTW wanted = FixedPitch(-10);
  wanted.lfWeight = FW_BOLD;
  wanted.lfItalic = TRUE;
  const TextFont font(wanted);
  EXPECT_EQ(font.Family(), L"Liberation Mono");
  EXPECT_FALSE(font.Substituted());
  EXPECT_EQ(font.Names().style, L"Bold Italic");
  EXPECT_EQ(font.Metrics().fwdUnitsPerEm, 2048);
  EXPECT_EQ(font.Metrics().usWinWeight, FW_BOLD);
  EXPECT_EQ(font.Metrics().fsSelection & FM_SEL_ITALIC, FM_SEL_ITALIC);
  EXPECT_EQ(font.Metrics().jWinPitchAndFamily & 3, FIXED_PITCH);
  EXPECT_EQ(font.AdvanceOf(font.GlyphOf(L'W')), 1229);

  wcscpy(wanted.lfFaceName, L"No Such Font At All");
  EXPECT_TRUE(TextFont(wanted).Substituted());

  // Arabic is what DejaVu has, whose glyph indexes cannot be turned back.
  wanted.lfCharSet = ARABIC_CHARSET;
  wanted.lfPitchAndFamily = VARIABLE_PITCH | FF_SWISS;
  FontCache fonts;
  const auto substitute = fonts.Find(wanted);
  EXPECT_TRUE(substitute->Map().invertible) << TextFont(wanted).Map().invertible;
  EXPECT_EQ(substitute->Wanted().lfFaceName, std::wstring(L"No Such Font At All"));

  // A mark goes with its letter, also where the letter's own font lacks no more than the mark.
  const std::wstring text = L"q\x20D7 q";
  wanted = FixedPitch(-10);
  const auto mono = fonts.Find(wanted);
  const FontChoice choice = fonts.Choose(mono, text);
  ASSERT_EQ(choice.fonts.size(), text.size());
  EXPECT_EQ(choice.fonts[0], choice.fonts[1]);
  EXPECT_NE(choice.fonts[0], mono);
  EXPECT_EQ(choice.fonts[3], mono);
  EXPECT_EQ(choice.in_others, 2u);
  EXPECT_EQ(fonts.Choose(mono, L"\xE000\xDBFF\xDFFE").missing, 3u);

  // The platform answers to the name of a font that it replaces by another.
  wcscpy(wanted.lfFaceName, L"Courier New");
  const TextFont replaced(wanted);
  EXPECT_EQ(replaced.Names().family, L"Courier New");
  EXPECT_EQ(replaced.Family(), L"Liberation Mono");
  EXPECT_TRUE(replaced.Substituted());
}

}  // namespace
}  // namespace quillo::host
