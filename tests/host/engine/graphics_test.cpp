#include "tests/host/engine/graphics_fixture.h"

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

Path Rectangle(double left, double top, double right, double bottom) {
  Path path;
  path.AddRectangle(left, top, right, bottom);
  return path;
}

TEST_F(DrawingTest, Stroke_PassesPathPenAndClip) {
  Page().Stroke(Triangle(), thin_, {});
  PenDescription wide;
  wide.geometric = true;
  wide.width = 2.5f;
  wide.style = {4, 1.5f};
  wide.world_to_device.eM11 = 3;
  DrawState cut;
  cut.clip = ClipShape(RECTL{0, 0, 15, 15});
  cut.rop2 = R2_XORPEN;
  Page().Stroke(Triangle(), wide, cut);
  EXPECT_EQ(driver_.calls,
            (Calls{"StrokePath thin 1, solid 0, mix 13, [f: 10,10 20.5,10 10,30], trivial",
                   "StrokePath wide 2.5x3/4/1.5, solid 0, mix 7, [f: 10,10 20.5,10 10,30], "
                   "rect 0,0,15,15"}));
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
            (Calls{"FillPath solid ff0000, mix 13, mode 2, [7: 0,0 4,0 4,0.4375 4,1 0,1], trivial",
                   "FillPath solid ff0000, mix 13, mode 1, [5: 0,0 4,0] [10: 4,0.25 4,0.5 4,1] "
                   "[2: 0,1], trivial"}));
}

TEST_F(DrawingTest, RefusedHooks_FallBack) {
  driver_.refusing = "StrokeAndFillPath";
  Graphics page = Page();
  page.StrokeAndFill(Triangle(), thin_, red_, FillMode::kAlternate, {});
  driver_.refusing = "LineTo";
  page.Line({16, 16}, {88, 40}, thin_, {});
  driver_.refusing = "";
  page.Line({16, 16}, {88, 40}, thin_, {});
  thin_.style = CosmeticStyle(PS_DASH);
  page.Line({16, 16}, {88, 40}, thin_, {});
  Calls names;
  for (const std::string& call : driver_.calls) names.push_back(call.substr(0, call.find(' ')));
  EXPECT_EQ(names, (Calls{"StrokeAndFillPath", "FillPath", "StrokePath", "LineTo", "StrokePath",
                          "LineTo", "StrokePath"}));
  EXPECT_EQ(driver_.calls[3], "LineTo 1,1,6,3");
  EXPECT_EQ(page.Calls().made.at("DrvStrokePath"), 3u);
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

TEST_F(DrawingTest, DrawingOutsideClipOrSurface_IsDropped) {
  Graphics page = Page();
  DrawState cut, none;
  cut.clip = ClipShape(RECTL{40, 40, 50, 50});
  none.rop2 = R2_NOP;
  page.Fill(Triangle(), red_, FillMode::kAlternate, cut);
  page.Fill(Rectangle(200, 10, 210, 20), red_, FillMode::kAlternate, {});
  page.Stroke(Triangle(), thin_, none);
  EXPECT_TRUE(driver_.calls.empty());
  EXPECT_TRUE(page.Calls().refused.empty());
}

TEST_F(DrawingTest, ComplexClip_ComesAsOutlineCutToTheDrawing) {
  Path diamond;
  diamond.MoveTo(50.0, 20.0);
  diamond.LineTo(90.0, 60.0);
  diamond.LineTo(50.0, 100.0);
  diamond.LineTo(10.0, 60.0);
  DrawState state;
  state.clip = ClipShape::OfPath(diamond, FillMode::kAlternate);
  const std::pair<Path, const char*> cases[] = {
      {Rectangle(0, 0, 100, 80),
       "[f: 100,0 0,0 0,80 100,80], complex 10,21,90,80 [f: 50,20 90,60 70,80 30,80 10,60]"},
      {Rectangle(0, 0, 50, 60), "complex 11,21,50,60 [f: 50,20 50,60 10,60]"},
      {Rectangle(45, 55, 55, 65), "trivial"},  // wholly inside
  };
  for (const auto& [area, clip] : cases) {
    Page().Fill(area, red_, FillMode::kAlternate, state);
    EXPECT_TRUE(driver_.calls.back().ends_with(clip)) << driver_.calls.back();
  }
}

TEST_F(DrawingTest, Brushes_AreRealizedOnDemand) {
  BrushDescription hatch;
  hatch.kind = BrushDescription::Kind::kHatched;
  hatch.hatch = HS_CROSS;
  hatch.color = RGB(1, 2, 3);
  auto picture = std::make_shared<BitmapSource>();
  picture->width = 2;
  picture->height = 3;
  picture->bits_per_pixel = 1;
  picture->palette = {0x445566};
  BrushDescription pattern;
  pattern.kind = BrushDescription::Kind::kPattern;
  pattern.pattern = picture;
  Graphics page = Page();
  page.Paint(ClipShape(RECTL{1, 1, 9, 9}), hatch, {});
  page.Paint(ClipShape(RECTL{-5, 1, 300, 9}), pattern, {});
  EXPECT_EQ(driver_.calls, (Calls{"RealizeBrush", "Paint hatch 4 8x8 ffffff 10203, rect 1,1,9,9",
                                  "RealizeBrush", "Paint hatch 6 2x3 445566 0, rect 0,1,100,9"}));
  EXPECT_EQ(page.Calls().made.at("DrvRealizeBrush"), 2u);
}

}  // namespace
}  // namespace quillo::host
