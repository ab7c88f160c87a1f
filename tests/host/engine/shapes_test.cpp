#include "base/ddi.h"

#include <cmath>
#include <gtest/gtest.h>

#include "host/engine/clip_shape.h"
#include "host/engine/path.h"

namespace quillo::host {
namespace {

/// A circle as four cubics, as GDI draws its ellipses.
Path Circle(double x, double y, double radius) {
  const double k = radius * 0.5522847498;
  Path path;
  path.MoveTo(x + radius, y);
  path.BezierTo(x + radius, y - k, x + k, y - radius, x, y - radius);
  path.BezierTo(x - k, y - radius, x - radius, y - k, x - radius, y);
  path.BezierTo(x - radius, y + k, x - k, y + radius, x, y + radius);
  path.BezierTo(x + k, y + radius, x + radius, y + k, x + radius, y);
  path.CloseFigure();
  return path;
}

TEST(Path, Flattened_StaysWithinAnEighthOfAPixel) {
  for (const double radius : {0.5, 3.0, 40.0, 700.0, 30000.0}) {
    const Path flat = Circle(0, 0, radius).Flattened();
    ASSERT_FALSE(flat.HasBeziers());
    const std::vector<POINTFIX>& points = flat.Figures().front().points;
    const double curve_error = radius * 0.0003;  // of the cubics themselves
    for (size_t i = 0; i + 1 < points.size(); ++i) {
      const double x = (points[i].x + points[i + 1].x) / 32.0;
      const double y = (points[i].y + points[i + 1].y) / 32.0;
      EXPECT_NEAR(std::hypot(x, y), radius, 0.125 + curve_error) << radius;
    }
    EXPECT_LT(static_cast<double>(points.size()), 20 + 12 * std::sqrt(radius));
  }
}

TEST(Path, Coordinates_AreClampedToTheFormat) {
  EXPECT_EQ(ToFix(1.5), 24);
  EXPECT_EQ(ToFix(-1.5), -24);
  EXPECT_EQ(ToFix(1e30), -ToFix(-1e30));
  EXPECT_GT(ToFix(1e30), 1 << 30);
  EXPECT_EQ(ToFix(std::nan("")), 0);
}

TEST(ClipShape, OutlineOfSlantedRegion_TakesFewPoints) {
  const ClipShape circle = ClipShape::OfPath(Circle(500, 500, 400), FillMode::kAlternate);
  const ClipShape copied = ClipShape::OfRegion(circle.Handle());  // knows its pixels only
  const Path& outline = copied.Outline();
  size_t points = 0;
  for (const Figure& figure : outline.Figures()) points += figure.points.size();
  EXPECT_LT(points, 300u);  // of some 3000 corners
  EXPECT_GT(points, 20u);

  // The corners of the steps lie up to a pixel beside the circle, and straight lines run between.
  for (const POINTFIX& p : outline.Figures().front().points) {
    EXPECT_NEAR(std::hypot(p.x / 16.0 - 500, p.y / 16.0 - 500), 400, 2);
  }
}

TEST(ClipShape, Combined_UnboundedGivesWay) {
  const ClipShape everything, rect(RECTL{1, 2, 3, 4});
  EXPECT_TRUE(everything.Unbounded());
  EXPECT_TRUE(everything.Combined(rect, RGN_AND).SameAs(rect));
  EXPECT_TRUE(rect.Combined(everything, RGN_AND).SameAs(rect));
  EXPECT_TRUE(everything.Offset(5, 5).Unbounded());
  EXPECT_TRUE(rect.Combined(rect, RGN_DIFF).Empty());
  EXPECT_FALSE(everything.Combined(rect, RGN_DIFF).Contains({0, 0, 5, 5}));
  EXPECT_TRUE(everything.Combined(rect, RGN_DIFF).Contains({10, 10, 500, 500}));
}

}  // namespace
}  // namespace quillo::host
