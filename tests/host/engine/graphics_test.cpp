#include "tests/host/engine/graphics_fixture.h"

// What hangs on the driver; what hangs on the drawing is told by the scripts of metafiles.
namespace quillo::host {
namespace {

class DrawingTest : public GraphicsTest {
 protected:
  PenDescription thin_;
  BrushDescription red_ = BrushDescription::Solid(RGB(255, 0, 0));
};

Path Triangle() {
  Path path;
  path.MoveTo(10.0, 10.0);
  path.LineTo(20.5, 10.0);
  path.LineTo(10.0, 30.0);
  path.CloseFigure();
  return path;
}

TEST_F(DrawingTest, Curves_AreFlattenedUnlessTheDriverTakesThem) {
  Path path;
  path.MoveTo(0.0, 0.0);
  path.LineTo(4.0, 0.0);
  path.BezierTo(4.0, 0.25, 4.0, 0.5, 4.0, 1.0);
  path.LineTo(0.0, 1.0);
  Page().Fill(path, red_, FillMode::kWinding, {});
  driver_.graphics_caps = GCAPS_BEZIERS;
  Page().Fill(path, red_, FillMode::kAlternate, {});
  EXPECT_EQ(driver_.calls,
            (Calls{"FillPath solid ff0000 winding, [7: 0,0 4,0 4,0.4375 4,1 0,1]",
                   "FillPath solid ff0000, [5: 0,0 4,0] [10: 4,0.25 4,0.5 4,1] [2: 0,1]"}));
}

TEST_F(DrawingTest, RefusedHooks_FallBack) {
  driver_.refusing = "StrokeAndFillPath";
  Graphics page = Page();
  page.StrokeAndFill(Triangle(), thin_, red_, FillMode::kAlternate, {});
  driver_.refusing = "LineTo";
  page.Line({16, 16}, {88, 40}, thin_, {});
  const std::string triangle = ", [f: 10,10 20.5,10 10,30]";
  EXPECT_EQ(driver_.calls,
            (Calls{"StrokeAndFillPath thin solid 0, solid ff0000" + triangle,
                   "FillPath solid ff0000" + triangle, "StrokePath thin solid 0" + triangle,
                   "LineTo solid 0, 1,1,6,3", "StrokePath thin solid 0, [7: 1,1 5.5,2.5]"}));
  EXPECT_EQ(page.Calls().made.at("DrvStrokePath"), 2u);
  EXPECT_TRUE(page.Calls().refused.empty());
}

TEST_F(DrawingTest, HookMissingOrNotAskedFor_IsReported) {
  surface_->hooks &= ~ULONG{HOOK_FILLPATH};
  Graphics page = Page();
  page.Fill(Triangle(), red_, FillMode::kAlternate, {});
  driver_.functions.StrokePath = nullptr;
  page.Stroke(Triangle(), thin_, {});
  EXPECT_TRUE(driver_.calls.empty());
  EXPECT_EQ(page.Calls().refused.at("DrvFillPath"), 1u);
  EXPECT_EQ(page.Calls().refused.at("DrvStrokePath"), 1u);
}

TEST_F(DrawingTest, MissingBytesOfAPicture_AreZero) {
  BitmapSource cut;  // the second pixel is not there
  cut.width = 2;
  cut.height = 1;
  cut.bits_per_pixel = 16;
  cut.bits = {std::byte{0xE0}, std::byte{0x07}};
  Page().BitBlt({0, 0, 2, 1}, 0xCC, nullptr, &cut, {0, 0}, {});
  EXPECT_EQ(driver_.calls, (Calls{"CopyBits 0,0,2,1 from 0,0 of 2x1x16 e0070000"}));
}

TEST_F(DrawingTest, Realizations_AreCounted) {
  BrushDescription hatch;
  hatch.kind = BrushDescription::Kind::kHatched;
  Graphics page = Page();
  page.Paint(ClipShape(RECTL{1, 1, 9, 9}), hatch, {});
  EXPECT_EQ(page.Calls().made.at("DrvRealizeBrush"), 1u);
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
