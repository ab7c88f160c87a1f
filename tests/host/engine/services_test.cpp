#include "base/ddi.h"

#include <gtest/gtest.h>

#include "host/engine/services/brushes.h"
#include "host/engine/services/guard.h"
#include "host/engine/services/surfaces.h"
#include "host/engine/services/transforms.h"

namespace quillo::host {
namespace {

TEST(Surface, Rows_ArePaddedToWords) {
  const struct {
    SIZEL size;
    LONG row_bytes;
    ULONG format;
    LONG expected_row_bytes;  // 0: refused
  } cases[] = {
      {{1, 1}, 0, BMF_24BPP, 4}, {{3, 2}, 0, BMF_24BPP, 12},       {{3, 2}, 16, BMF_24BPP, 16},
      {{33, 1}, 0, BMF_1BPP, 8}, {{3, 2}, 8, BMF_24BPP, 0},        {{3, 2}, 14, BMF_24BPP, 0},
      {{0, 5}, 0, BMF_24BPP, 0}, {{5, 0}, 0, BMF_24BPP, 0},        {{5, -5}, 0, BMF_24BPP, 0},
      {{5, 5}, 0, BMF_JPEG, 0},  {{70000, 70000}, 0, BMF_32BPP, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    const auto surface = reinterpret_cast<HSURF>(
        EngCreateBitmap(c.size, c.row_bytes, c.format, BMF_TOPDOWN, nullptr));
    ASSERT_EQ(surface != nullptr, c.expected_row_bytes != 0);
    if (surface == nullptr) continue;
    const SURFOBJ& object = *FindSurface(surface);
    EXPECT_EQ(object.lDelta, c.expected_row_bytes);
    EXPECT_EQ(object.cjBits, static_cast<ULONG>(c.expected_row_bytes * c.size.cy));
    EXPECT_TRUE(EngDeleteSurface(surface));
    EXPECT_FALSE(EngDeleteSurface(surface));
  }
}

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

TEST(XformObject, Apply_MapsEachModeAndRoundsToNearest) {
  const struct {
    XFORML matrix;
    ULONG complexity, mode;
    POINTL in, out;
    bool mapped;
  } cases[] = {
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
  for (const auto& c : cases) {
    XformObject xform(c.matrix);
    EXPECT_EQ(XFORMOBJ_iGetXform(&xform, nullptr), c.complexity);
    POINTL in = c.in, out{};
    EXPECT_EQ(XFORMOBJ_bApplyXform(&xform, c.mode, 1, &in, &out) != FALSE, c.mapped);
    if (!c.mapped) continue;
    EXPECT_EQ(out.x, c.out.x) << c.complexity << " " << c.mode;
    EXPECT_EQ(out.y, c.out.y) << c.complexity << " " << c.mode;
  }
}

WINBOOL APIENTRY RealiseWithIndex(BRUSHOBJ* brush, SURFOBJ*, SURFOBJ*, SURFOBJ*, XLATEOBJ*,
                                  ULONG hatch) {
  auto* block = static_cast<ULONG*>(BRUSHOBJ_pvAllocRbrush(brush, sizeof(ULONG)));
  if (block == nullptr) return FALSE;
  *block += hatch;
  return hatch != HS_CROSS;
}

TEST(BrushObject, Realisation_IsMadeOnce) {
  BrushObject brush({.realise = RealiseWithIndex, .hatch = HS_VERTICAL});
  EXPECT_EQ(brush.iSolidColor, kNotSolid);
  auto* block = static_cast<ULONG*>(BRUSHOBJ_pvGetRbrush(&brush));
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(*block, ULONG{HS_VERTICAL});
  EXPECT_EQ(BRUSHOBJ_pvGetRbrush(&brush), block);

  BrushObject refused({.realise = RealiseWithIndex, .hatch = HS_CROSS});
  EXPECT_EQ(BRUSHOBJ_pvGetRbrush(&refused), nullptr);
  BrushObject short_of_memory({.realise = RealiseWithIndex, .hatch = HS_VERTICAL});
  FailNextCall("BRUSHOBJ_pvAllocRbrush");
  EXPECT_EQ(BRUSHOBJ_pvGetRbrush(&short_of_memory), nullptr);
  BrushObject solid(0x123456);
  EXPECT_EQ(BRUSHOBJ_pvGetRbrush(&solid), nullptr);
}

}  // namespace
}  // namespace quillo::host
