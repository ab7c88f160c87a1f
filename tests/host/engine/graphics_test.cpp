#include <algorithm>

#include "host/engine/font_cache.h"
#include "tests/host/engine/fake_driver.h"

// What metafiles cannot show; drawing itself is tested by their scripts.
namespace quillo::host {
namespace {

TEST_F(GraphicsTest, Calls_AreCountedAlsoWithoutTheirHook) {
  Path line;
  line.MoveTo(10.0, 10.0);
  line.LineTo(20.5, 10.0);
  BrushDescription hatch;
  hatch.kind = BrushDescription::Kind::kHatched;
  surface_->hooks &= ~ULONG{HOOK_FILLPATH};
  driver_.functions.StrokePath = nullptr;
  Graphics page = Page();
  page.Fill(line, hatch, FillMode::kAlternate, {});
  page.Stroke(line, {}, {});
  EXPECT_TRUE(driver_.calls.empty());
  page.Paint(ClipShape(RECTL{1, 1, 9, 9}), hatch, {});
  using Counts = std::map<std::string, uint64_t>;
  EXPECT_EQ(page.Calls().made, (Counts{{"DrvPaint", 1}, {"DrvRealizeBrush", 1}}));
  EXPECT_EQ(page.Calls().refused, (Counts{{"DrvFillPath", 1}, {"DrvStrokePath", 1}}));
}

/// Nothing of such a picture may be made: it would take 144 MB.
TEST_F(GraphicsTest, PicturesTooLargeToBeMade_AreCounted) {
  BitmapSource huge;
  huge.width = huge.height = 12000;
  huge.bits_per_pixel = 8;
  huge.run_length = true;
  Graphics page = Page();
  page.BitBlt({0, 0, 1, 1}, 0x88, nullptr, &huge, {0, 0}, {});
  page.StretchBlt({0, 0, 2, 2}, huge, {0, 0, 4, 4}, 0xCC, nullptr, COLORONCOLOR, {});
  page.TransparentBlt({0, 0, 2, 2}, huge, {0, 0, 4, 4}, 0, {});
  EXPECT_TRUE(driver_.calls.empty());
  const std::map<std::string, uint64_t> unmade = {
      {"DrvAlphaBlend", 1}, {"DrvBitBlt", 1}, {"DrvStretchBlt", 1}};
  EXPECT_EQ(page.Calls().unmade, unmade);
  EXPECT_TRUE(page.Calls().refused.empty());
}

/// An installed font whose letters and figures have the same width: 0.6001 of its size.
LOGFONTW FixedPitch(LONG height) {
  LOGFONTW font{};
  font.lfHeight = height;
  wcscpy(font.lfFaceName, L"Liberation Mono");
  return font;
}

TEST_F(GraphicsTest, LongText_ComesInBatches) {
  TextDescription line;
  line.font = std::make_shared<TextFont>(FixedPitch(-1));
  line.text.assign(600, L'x');
  Page().Text(line, {});
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
