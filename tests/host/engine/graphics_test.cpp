#include "tests/host/engine/graphics_fixture.h"

// What metafiles cannot show; drawing itself is tested by their scripts.
namespace quillo::host {
namespace {

using DrawingTest = GraphicsTest;

TEST_F(DrawingTest, Calls_AreCountedAlsoWithoutTheirHook) {
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
TEST_F(DrawingTest, PicturesTooLargeToBeMade_AreCounted) {
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

}  // namespace
}  // namespace quillo::host
