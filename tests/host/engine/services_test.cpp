#include "base/ddi.h"

#include <gtest/gtest.h>

#include "host/engine/services/brushes.h"
#include "host/engine/services/clips.h"
#include "host/engine/services/colors.h"
#include "host/engine/services/fonts.h"
#include "host/engine/services/guard.h"
#include "host/engine/services/strings.h"
#include "host/engine/services/surfaces.h"

namespace quillo::host {
namespace {

struct BitmapCase {
  SIZEL size;
  LONG row_bytes;
  ULONG format;
  LONG expected_row_bytes;  // 0: refused
};

class BitmapCreation : public testing::TestWithParam<BitmapCase> {};

TEST_P(BitmapCreation, RowsArePaddedToWords) {
  const BitmapCase& c = GetParam();
  const HSURF surface =
      reinterpret_cast<HSURF>(EngCreateBitmap(c.size, c.row_bytes, c.format, BMF_TOPDOWN, nullptr));
  if (c.expected_row_bytes == 0) {
    EXPECT_EQ(surface, nullptr);
    return;
  }
  ASSERT_NE(surface, nullptr);
  const SURFOBJ& object = *FindSurface(surface);
  EXPECT_EQ(object.lDelta, c.expected_row_bytes);
  EXPECT_EQ(object.cjBits, static_cast<ULONG>(c.expected_row_bytes * c.size.cy));
  EXPECT_EQ(object.pvScan0, object.pvBits);
  EXPECT_TRUE(EngDeleteSurface(surface));
  EXPECT_FALSE(EngDeleteSurface(surface));
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, BitmapCreation,
    testing::Values(BitmapCase{{1, 1}, 0, BMF_24BPP, 4}, BitmapCase{{3, 2}, 0, BMF_24BPP, 12},
                    BitmapCase{{3, 2}, 16, BMF_24BPP, 16}, BitmapCase{{33, 1}, 0, BMF_1BPP, 8},
                    BitmapCase{{3, 2}, 8, BMF_24BPP, 0}, BitmapCase{{3, 2}, 14, BMF_24BPP, 0},
                    BitmapCase{{0, 5}, 0, BMF_24BPP, 0}, BitmapCase{{5, 0}, 0, BMF_24BPP, 0},
                    BitmapCase{{5, -5}, 0, BMF_24BPP, 0}, BitmapCase{{5, 5}, 0, BMF_JPEG, 0},
                    BitmapCase{{70000, 70000}, 0, BMF_32BPP, 0}));

TEST(Surface, EraseOutsideBounds_FillsOnlyTheSurface) {
  for (const ULONG format : {BMF_1BPP, BMF_4BPP, BMF_8BPP, BMF_16BPP, BMF_24BPP, BMF_32BPP}) {
    const auto surface = Surface::Allocate({9, 3}, static_cast<ULONG>(format), false, 0);
    RECTL area{3, 1, 100, 2};
    ASSERT_TRUE(EngEraseSurface(surface.get(), &area, 0xFFFFFFFF));
    const ULONG bits = BitsPerPixel(static_cast<ULONG>(format));
    for (LONG y = 0; y < 3; ++y) {
      const auto* row = static_cast<const uint8_t*>(surface->pvScan0) + y * surface->lDelta;
      for (ULONG bit = 0; bit < 9 * bits; ++bit) {
        const bool set = (row[bit / 8] >> (7 - bit % 8) & 1) != 0;
        EXPECT_EQ(set, y == 1 && bit >= 3 * bits) << format << " " << y << " " << bit;
      }
    }
  }
}

TEST(Surface, Association_TakesOverTheDevice) {
  EngineDevice device;
  device.dhpdev = reinterpret_cast<DHPDEV>(0x1234);
  const HSURF surface = reinterpret_cast<HSURF>(EngCreateBitmap({4, 4}, 12, BMF_24BPP, 0, nullptr));
  EXPECT_FALSE(EngAssociateSurface(surface, reinterpret_cast<HDEV>(surface), HOOK_BITBLT));
  EXPECT_TRUE(EngAssociateSurface(surface, device.Handle(), HOOK_BITBLT));
  EXPECT_EQ(FindSurface(surface)->dhpdev, device.dhpdev);
  EXPECT_EQ(FindSurface(surface)->hooks, HOOK_BITBLT);
  EngDeleteSurface(surface);
  EXPECT_EQ(LiveSurfaceCount(), 0u);
}

TEST(PathObject, Enumeration_GivesRunsInOrderAndStartsAgain) {
  PathObject path({{PD_BEGINSUBPATH, {{16, 32}, {-16, 0}}},
                   {PD_BEZIERS | PD_ENDSUBPATH, {{0, 0}, {80, 0}, {48, 64}}}});
  for (int pass = 0; pass < 2; ++pass) {
    PATHDATA data{};
    PATHOBJ_vEnumStart(&path);
    EXPECT_TRUE(PATHOBJ_bEnum(&path, &data));
    EXPECT_EQ(data.count, 2u);
    EXPECT_FALSE(PATHOBJ_bEnum(&path, &data));
    EXPECT_EQ(data.flags, ULONG{PD_BEZIERS | PD_ENDSUBPATH});
    EXPECT_EQ(data.pptfx[2].y, 64);
  }
  RECTFX bounds{};
  PATHOBJ_vGetBounds(&path, &bounds);
  EXPECT_EQ(bounds.xLeft, -16);
  EXPECT_EQ(bounds.yTop, 0);
  EXPECT_EQ(bounds.xRight, 80);
  EXPECT_EQ(bounds.yBottom, 64);

  PathObject empty({});
  PATHDATA data{1, 1, nullptr};
  EXPECT_FALSE(PATHOBJ_bEnum(&empty, &data));
  EXPECT_EQ(data.count, 0u);
}

TEST(ClipObject, Outline_BelongsToTheCaller) {
  ClipObject clip({0, 0, 2, 2}, {{PD_BEGINSUBPATH | PD_CLOSEFIGURE, {{0, 0}, {32, 0}, {0, 32}}}});
  PATHOBJ* outline = CLIPOBJ_ppoGetPath(&clip);
  ASSERT_NE(outline, nullptr);
  EXPECT_EQ(LivePathCount(), 1u);
  EngDeletePath(outline);
  EXPECT_EQ(LivePathCount(), 0u);
}

struct XformCase {
  XFORML matrix;
  ULONG complexity;
  ULONG mode;
  POINTL in;
  POINTL out;
  bool mapped;
};

TEST(XformObject, Apply_MapsEachModeAndRoundsToNearest) {
  const XformCase cases[] = {
      {{1, 0, 0, 1, 0, 0}, GX_IDENTITY, XF_LTOL, {3, -4}, {3, -4}, true},
      {{1, 0, 0, 1, 5, 6}, GX_OFFSET, XF_INV_LTOL, {3, -4}, {-2, -10}, true},
      {{2.5f, 0, 0, -1, 0, 0}, GX_SCALE, XF_LTOL, {1, 7}, {3, -7}, true},
      {{0.25f, 0, 0, 0.25f, 0, 0}, GX_SCALE, XF_LTOFX, {3, 1}, {12, 4}, true},
      {{2, 0, 0, 2, 0, 0}, GX_SCALE, XF_INV_FXTOL, {64, 32}, {2, 1}, true},
      {{0, 2, -2, 0, 10, 20}, GX_GENERAL, XF_LTOL, {3, 4}, {2, 26}, true},
      {{0, 2, -2, 0, 10, 20}, GX_GENERAL, XF_INV_LTOL, {2, 26}, {3, 4}, true},
      {{1, 1, 1, 1, 0, 0}, GX_GENERAL, XF_INV_LTOL, {2, 26}, {0, 0}, false},
      {{1e9f, 0, 0, 1, 0, 0}, GX_SCALE, XF_LTOL, {1000, 0}, {0, 0}, false},
  };
  for (const XformCase& c : cases) {
    XformObject xform(c.matrix);
    EXPECT_EQ(XFORMOBJ_iGetXform(&xform, nullptr), c.complexity);
    POINTL in = c.in, out{};
    EXPECT_EQ(XFORMOBJ_bApplyXform(&xform, c.mode, 1, &in, &out) != FALSE, c.mapped);
    if (!c.mapped) continue;
    EXPECT_EQ(out.x, c.out.x) << c.complexity << " " << c.mode;
    EXPECT_EQ(out.y, c.out.y) << c.complexity << " " << c.mode;
  }
}

TEST(XlateObject, Palette_IsTheVectorAsColorrefs) {
  XlateObject xlate({0x112233, 0xFF0000});
  ULONG palette[3] = {7, 7, 7};
  EXPECT_EQ(XLATEOBJ_cGetPalette(&xlate, XO_SRCPALETTE, 3, palette), 2u);
  EXPECT_EQ(palette[0], 0x332211u);
  EXPECT_EQ(palette[1], 0x0000FFu);
  EXPECT_EQ(palette[2], 7u);
  xlate.pulXlate = nullptr;
  EXPECT_EQ(XLATEOBJ_piVector(&xlate)[1], 0xFF0000u);
}

WINBOOL APIENTRY RealizeWithIndex(BRUSHOBJ* brush, SURFOBJ*, SURFOBJ*, SURFOBJ*, XLATEOBJ*,
                                  ULONG hatch) {
  auto* block = static_cast<ULONG*>(BRUSHOBJ_pvAllocRbrush(brush, sizeof(ULONG)));
  if (block == nullptr) return FALSE;
  *block += hatch;
  return hatch != HS_CROSS;
}

TEST(BrushObject, Realization_IsMadeOnce) {
  BrushObject brush({.realize = RealizeWithIndex, .hatch = HS_VERTICAL});
  EXPECT_EQ(brush.iSolidColor, kNotSolid);
  auto* block = static_cast<ULONG*>(BRUSHOBJ_pvGetRbrush(&brush));
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(*block, ULONG{HS_VERTICAL});
  EXPECT_EQ(BRUSHOBJ_pvGetRbrush(&brush), block);

  BrushObject refused({.realize = RealizeWithIndex, .hatch = HS_CROSS});
  EXPECT_EQ(BRUSHOBJ_pvGetRbrush(&refused), nullptr);
  BrushObject short_of_memory({.realize = RealizeWithIndex, .hatch = HS_VERTICAL});
  FailNextCall("BRUSHOBJ_pvAllocRbrush");
  EXPECT_EQ(BRUSHOBJ_pvGetRbrush(&short_of_memory), nullptr);
  BrushObject solid(0x123456);
  EXPECT_EQ(BRUSHOBJ_pvGetRbrush(&solid), nullptr);
}

TEST(StringObject, Enumeration_HasThreeResults) {
  std::vector<GLYPHPOS> glyphs(5);
  for (ULONG i = 0; i < 5; ++i) glyphs[i].hg = i;
  StringObject string(glyphs, L"abcde", SO_HORIZONTAL, {}, 2);
  EXPECT_EQ(string.pgp, nullptr);
  ULONG count = 0;
  GLYPHPOS* positions = nullptr;
  STROBJ_vEnumStart(&string);
  EXPECT_EQ(STROBJ_bEnum(&string, &count, &positions), TRUE);
  EXPECT_EQ(STROBJ_bEnum(&string, &count, &positions), TRUE);
  EXPECT_EQ(STROBJ_bEnum(&string, &count, &positions), FALSE);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(positions->hg, 4u);
  FailNextCall("STROBJ_bEnum");
  EXPECT_EQ(STROBJ_bEnum(&string, &count, &positions), static_cast<WINBOOL>(DDI_ERROR));

  StringObject at_hand(glyphs, L"abcde", SO_HORIZONTAL, {});
  ASSERT_NE(at_hand.pgp, nullptr);
  EXPECT_EQ(at_hand.pgp[4].hg, 4u);
}

TEST(FontObject, Metrics_PointToTheirNames) {
  FontObject font({}, {L"Family", L"Bold", L"Family Bold"}, {1, 0, 0, -1, 0, 0});
  const IFIMETRICS* metrics = FONTOBJ_pifi(&font);
  const auto* base = reinterpret_cast<const char*>(metrics);
  EXPECT_STREQ(reinterpret_cast<const wchar_t*>(base + metrics->dpwszFamilyName), L"Family");
  EXPECT_STREQ(reinterpret_cast<const wchar_t*>(base + metrics->dpwszFaceName), L"Family Bold");
  EXPECT_EQ(XFORMOBJ_iGetXform(FONTOBJ_pxoGetXform(&font), nullptr), ULONG{GX_SCALE});
}

}  // namespace
}  // namespace quillo::host
