#include "host/emf_format/page_mapping.h"

#include <cmath>
#include <gtest/gtest.h>

namespace quillo::host::emf {
namespace {

TEST(Transform, Inverse_UndoesTheMap) {
  const Transform map{2, 1, -3, 4, 5, 6};
  const PointD there = map.Apply(7, 8);
  const PointD back = map.Inverse().Apply(there.x, there.y);
  EXPECT_NEAR(back.x, 7, 1e-12);
  EXPECT_NEAR(back.y, 8, 1e-12);
  EXPECT_FALSE((Transform{1, 2, 2, 4, 0, 0}.Usable()));
  EXPECT_FALSE((Transform{1, 0, 0, NAN, 0, 0}.Usable()));
}

MetafileHeader HeaderOf(RectL frame, RectL bounds) {
  MetafileHeader header;
  header.frame = frame;
  header.bounds = bounds;
  header.device = {1000, 500};
  header.millimetres = {200, 100};
  return header;
}

TEST(PageMapping, EmptyFrame_FallsBackToBoundsThenDevice) {
  const struct {
    RectL frame, bounds;
    double left, top, width, height;
  } cases[] = {
      {{100, 200, 1100, 700}, {}, 5, 10, 50, 25},
      {{0, 0, -1, -1}, {10, 20, 19, 24}, 10, 20, 10, 5},
      {{}, {}, 0, 0, 1000, 500},
      {{INT32_MIN, 0, INT32_MAX, 100}, {}, INT32_MIN * 0.05, 0, 4294967295 * 0.05, 5},
  };
  for (const auto& c : cases) {
    const FrameRect frame = FrameOf(HeaderOf(c.frame, c.bounds));
    EXPECT_DOUBLE_EQ(frame.left, c.left);
    EXPECT_DOUBLE_EQ(frame.top, c.top);
    EXPECT_DOUBLE_EQ(frame.width, c.width);
    EXPECT_DOUBLE_EQ(frame.height, c.height);
  }
}

TEST(PageMapping, FitFrame_KeepsProportionsAndCentres) {
  // The frame is 10 x 5 mm, 50 x 25 pixels from (5, 10).
  const Transform fit = FitFrame(HeaderOf({100, 200, 1100, 700}, {}), {1000, 2000});
  EXPECT_EQ(fit.Apply(5, 10), (PointD{0, 750}));
  EXPECT_EQ(fit.Apply(55, 35), (PointD{1000, 1250}));
}

}  // namespace
}  // namespace quillo::host::emf
