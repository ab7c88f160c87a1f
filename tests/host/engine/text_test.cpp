#include <algorithm>
#include <cmath>

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

TEST_F(TextTest, Alignment_PlacesTheLineAboutItsReferencePoint) {
  const struct {
    UINT align;
    LONG escapement;
    std::string places;
  } cases[] = {
      {TA_BASELINE, 0, "3, solid 0, at 50,40 56,40, em 10 0 0 10"},
      {TA_BASELINE | TA_CENTER, 0, "3, solid 0, at 44,40 50,40, em 10 0 0 10"},
      {TA_BASELINE | TA_RIGHT, 0, "3, solid 0, at 38,40 44,40, em 10 0 0 10"},
      {TA_TOP, 0, "3, solid 0, at 50,48 56,48, em 10 0 0 10"},
      {TA_BOTTOM, 0, "3, solid 0, at 50,37 56,37, em 10 0 0 10"},
      {TA_BASELINE, 900, "d, solid 0, at 50,40 50,34, em 0 -10 10 0"},
      {TA_BASELINE, 1800, "b, solid 0, at 50,40 44,40, em -10 0 0 -10"},
      {TA_TOP, 2700, "5, solid 0, at 42,40 42,46, em 0 10 -10 0"},
      {TA_BASELINE, 450, "1, solid 0, at 50,40 54,36, em 7 -7 7 7"},
  };
  Graphics page = Page();
  for (const auto& c : cases) {
    driver_.calls.clear();
    LOGFONTW font = FixedPitch(-10);
    font.lfEscapement = font.lfOrientation = c.escapement;
    TextDescription line = Line(L"Ab", font);
    line.align = c.align;
    EXPECT_NEAR(page.Text(line, Transparent()), 12, 0.01);
    EXPECT_EQ(driver_.calls, (Calls{"TextOut Ab accel " + c.places})) << c.align;
  }
}

TEST_F(TextTest, Advances_OverrideTheFontsOwn) {
  Graphics page = Page();
  TextDescription line = Line(L"A b");
  line.dx = {6, 6, 6};
  page.Text(line, Transparent());
  line.dx = {10, 7, 3};
  EXPECT_EQ(page.Text(line, Transparent()), 20);
  line.dy = {0, 2, 0};
  page.Text(line, Transparent());
  line.dx.clear();
  line.dy.clear();
  line.character_extra = 1;
  line.break_extra = 5;
  page.Text(line, Transparent());
  EXPECT_EQ(driver_.calls,
            (Calls{"TextOut A b accel 3, solid 0, at 50,40 56,40 62,40, em 10 0 0 10",
                   "TextOut A b accel 2, solid 0, at 50,40 60,40 67,40, em 10 0 0 10",
                   "TextOut A b accel 400, solid 0, at 50,40 60,40 67,38, em 10 0 0 10",
                   "TextOut A b accel 2, solid 0, at 50,40 57,40 69,40, em 10 0 0 10"}));
}

TEST_F(TextTest, RightToLeft_PutsUnitsInTheirPlaces) {
  // Units in text order; a driver gets the places of a natural line from the left.
  const std::wstring hebrew = L"a\x05D0\x05D1";
  TextDescription line = Line(hebrew);
  TextLayout layout = LayOut(line);
  EXPECT_TRUE(layout.natural);
  EXPECT_LT(layout.origins[0].x, layout.origins[1].x);
  EXPECT_LT(layout.origins[1].x, layout.origins[2].x);

  line.dx = {8, 9, 10};
  layout = LayOut(line);
  EXPECT_FALSE(layout.natural);
  EXPECT_EQ(layout.origins[0].x, 50);
  EXPECT_EQ(layout.origins[1].x, 68);  // behind the third unit
  EXPECT_EQ(layout.origins[2].x, 58);
  line.right_to_left = true;
  EXPECT_EQ(LayOut(line).origins[0].x, 69);
  line.in_order = true;
  EXPECT_EQ(LayOut(line).origins[0].x, 50);
}

TEST_F(TextTest, FontSize_FollowsHeightWidthAndTransform) {
  Graphics page = Page();
  LOGFONTW cell = FixedPitch(1133);  // 0.8333 above and 0.3 below the baseline, of the size
  TextDescription line = Line(L"A", cell);
  EXPECT_NEAR(line.font->ScaleY() * 2048, 1000, 2);
  LOGFONTW wide = FixedPitch(-10);
  wide.lfWidth = 12;
  line = Line(L"A", wide);
  line.to_device = {1.5f, 0, 0, -2, 0, 0};
  page.Text(line, Transparent());
  EXPECT_EQ(driver_.calls, (Calls{"TextOut A accel 3, solid 0, at 50,40, em 30 0 0 -20"}));
}

TEST_F(TextTest, GlyphIndexes_StayIndexes) {
  Graphics page = Page();
  TextDescription line = Line(L"$E");
  line.glyph_indexes = true;
  page.Text(line, Transparent());
  EXPECT_EQ(driver_.calls, (Calls{"TextOut $E accel 103, solid 0, at 50,40 56,40, em 10 0 0 10"}));
  EXPECT_EQ(line.font->GlyphOf(L'A'), L'$');  // glyph = character - 29 in fonts of the common order
}

TEST_F(TextTest, Background_GoesAlongOrBefore) {
  Graphics page = Page();
  TextDescription line = Line(L"Ab");
  line.background = RGB(1, 2, 3);
  page.Text(line, {});
  line.opaque = RECTL{40, 20, 90, 60};
  page.Text(line, {});
  page.Text(line, Transparent());
  line.opaque = RECTL{0, 0, 5, 5};
  page.Text(line, {});
  line.text.clear();
  page.Text(line, {});
  const std::string text = "TextOut Ab accel 3, solid 0";
  const std::string places = ", at 50,40 56,40, em 10 0 0 10";
  EXPECT_EQ(
      driver_.calls,
      (Calls{text + ", opaque 50,32,62,43" + places, text + ", opaque 40,20,90,60" + places,
             text + ", opaque 40,20,90,60" + places, "BitBlt 0,0,5,5 rop f0f0, solid 10203",
             text + ", opaque 50,32,62,43" + places, "BitBlt 0,0,5,5 rop f0f0, solid 10203"}));
}

TEST_F(TextTest, BackgroundOfPlacedGlyphs_GoesBeforeThem) {
  Graphics page = Page();
  TextDescription line = Line(L"Ab");
  line.opaque = RECTL{40, 20, 90, 60};
  line.dx = {9, 9};
  page.Text(line, {});
  line.opaque.reset();
  page.Text(line, {});
  ASSERT_EQ(driver_.calls.size(), 4u);
  EXPECT_EQ(driver_.calls[0], "BitBlt 40,20,90,60 rop f0f0, solid ffffff");
  EXPECT_EQ(driver_.calls[1], "TextOut Ab accel 2, solid 0, at 50,40 59,40, em 10 0 0 10");
  EXPECT_TRUE(driver_.calls[2].starts_with("FillPath solid ffffff")) << driver_.calls[2];
  EXPECT_EQ(driver_.calls[3], driver_.calls[1]);
}

TEST_F(TextTest, Bars_AreDrawnBehindTheText) {
  Graphics page = Page();
  LOGFONTW font = FixedPitch(-20);
  font.lfUnderline = font.lfStrikeOut = TRUE;
  TextDescription line = Line(L"Ab", font);
  line.color = RGB(255, 0, 0);
  page.Text(line, Transparent());
  ASSERT_EQ(driver_.calls.size(), 3u);
  EXPECT_TRUE(driver_.calls[1].starts_with("FillPath solid ff0000")) << driver_.calls[1];
  EXPECT_TRUE(driver_.calls[2].starts_with("FillPath solid ff0000")) << driver_.calls[2];
}

TEST_F(TextTest, LongString_ComesInBatches) {
  Page().Text(Line(std::wstring(600, L'x'), FixedPitch(-1)), Transparent());
  const std::string& call = driver_.calls.at(0);
  EXPECT_EQ(std::ranges::count(call, ','), 2 + 3 + 3 * 4) << call;  // 4 places of each batch
}

TEST(TextFont, Metrics_AreThoseOfTheInstalledFont) {
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
}

}  // namespace
}  // namespace quillo::host
