#include "host/emf_format/page_transform.h"

#include <gtest/gtest.h>

#include "host/emf_format/page_mapping.h"

namespace quillo::host::emf {
namespace {

// 1000 x 500 pixels on 200 x 100 mm: 5 pixels a millimetre.
PageTransform Reference() { return {{1000, 500}, {200, 100}}; }

TEST(PageTransform, MapModes_ScaleByTheReferenceDeviceOrTheExtents) {
  const struct {
    uint32_t mode;
    PointD alone;
    PointD extents;  // with a window of 100 x 100 and a viewport of 200 x 400
  } cases[] = {
      {1, {1, 1}, {1, 1}},                                            // MM_TEXT
      {2, {0.5, -0.5}, {0.5, -0.5}},                                  // MM_LOMETRIC: 0.1 mm
      {3, {0.05, -0.05}, {0.05, -0.05}},                              // MM_HIMETRIC: 0.01 mm
      {4, {1.27, -1.27}, {1.27, -1.27}},                              // MM_LOENGLISH: 0.01 inch
      {5, {0.127, -0.127}, {0.127, -0.127}},                          // MM_HIENGLISH
      {6, {127 / 1440., -127 / 1440.}, {127 / 1440., -127 / 1440.}},  // MM_TWIPS
      {7, {0.5, -0.5}, {2, 2}},  // MM_ISOTROPIC begins as MM_LOMETRIC
      {8, {1, 1}, {2, 4}},       // MM_ANISOTROPIC
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.mode);
    PageTransform page = Reference();
    ASSERT_TRUE(page.SetMapMode(c.mode));
    EXPECT_NEAR(page.ToDevice().m11, c.alone.x, 0.002);
    EXPECT_NEAR(page.ToDevice().m22, c.alone.y, 0.002);
    EXPECT_TRUE(page.SetWindowExtent({100, 100}));
    EXPECT_TRUE(page.SetViewportExtent({200, 400}));
    EXPECT_NEAR(page.ToDevice().m11, c.extents.x, 0.002);
    EXPECT_NEAR(page.ToDevice().m22, c.extents.y, 0.002);
  }
  EXPECT_FALSE(Reference().SetMapMode(0));
  EXPECT_FALSE(Reference().SetMapMode(9));
}

TEST(PageTransform, ScaledExtents_NeverBecomeZero) {
  PageTransform page = Reference();
  page.SetMapMode(8);
  page.SetWindowExtent({10, -10});
  EXPECT_TRUE(page.ScaleWindowExtent({1, 1}, {1000, 1000}));
  EXPECT_EQ(page.ToDevice().m11, 1);
  EXPECT_EQ(page.ToDevice().m22, -1);
  EXPECT_TRUE(page.ScaleViewportExtent({6, INT32_MAX}, {2, 1}));
  EXPECT_EQ(page.ToDevice().m11, 3);
  EXPECT_FALSE(page.ScaleViewportExtent({1, 1}, {0, 1}));
  EXPECT_FALSE(page.SetWindowExtent({0, 1}));
}

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
  header.millimeters = {200, 100};
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
