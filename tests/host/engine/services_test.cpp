#include "base/ddi.h"

#include <gtest/gtest.h>
#include <sstream>
#include <thread>

#include "host/engine/services/brushes.h"
#include "host/engine/services/guard.h"
#include "host/engine/services/surfaces.h"
#include "host/engine/services/transforms.h"
#include "support/case_table.h"
#include "support/line.h"

namespace quillo::host {
namespace {

using test::Line;

/// Bytes of a row and of the whole bitmap.
std::string Create(std::istream& fields) {
  SIZEL size{};
  LONG row_bytes = 0;
  ULONG format = 0;
  fields >> size.cx >> size.cy >> row_bytes >> format;
  const auto surface =
      reinterpret_cast<HSURF>(EngCreateBitmap(size, row_bytes, format, BMF_TOPDOWN, nullptr));
  if (surface == nullptr) return "refused";
  const SURFOBJ& object = *FindSurface(surface);
  std::string text = Line(object.lDelta, " ", object.cjBits);
  EXPECT_TRUE(EngDeleteSurface(surface));
  EXPECT_FALSE(EngDeleteSurface(surface));
  return text;
}

/// The bytes that became 0xFF: "row: first to last". Others stay 0.
std::string Erase(std::istream& fields) {
  ULONG format = 0;
  RECTL area{};
  fields >> format >> area.left >> area.top >> area.right >> area.bottom;
  const auto surface = Surface::Allocate({9, 3}, format, false, 0);
  EXPECT_TRUE(EngEraseSurface(surface.get(), &area, 0xFFFFFFFF));
  std::string rows;
  for (LONG y = 0; y < 3; ++y) {
    const auto* row = static_cast<const uint8_t*>(surface->pvScan0) + y * surface->lDelta;
    std::string bytes;
    for (LONG i = 0; i < std::abs(surface->lDelta); ++i) bytes += Line(std::hex, int{row[i]}, ".");
    rows += (y == 0 ? "" : "/") + bytes.substr(0, bytes.find_last_not_of("0.") + 1);
  }
  return rows;
}

/// The complexity, and where the transform puts a point.
std::string Transform(std::istream& fields) {
  XFORML m{};
  ULONG mode = 0;
  POINTL in{}, out{};
  fields >> m.eM11 >> m.eM12 >> m.eM21 >> m.eM22 >> m.eDx >> m.eDy >> mode >> in.x >> in.y;
  XformObject xform(m);
  const ULONG complexity = XFORMOBJ_iGetXform(&xform, nullptr);
  if (!XFORMOBJ_bApplyXform(&xform, mode, 1, &in, &out)) return Line(complexity, " nowhere");
  return Line(complexity, " ", out.x, ",", out.y);
}

TEST(EngineDevice, ManyThreads_FindTheirOwn) {
  std::jthread threads[8];
  for (std::jthread& thread : threads) {
    thread = std::jthread([] {
      for (int round = 0; round < 5000; ++round) {
        EngineDevice device;
        EXPECT_EQ(EngineDevice::Find(device.Handle()), &device);
      }
    });
  }
}

TEST(EngineServices, Table_Holds) {
  test::CheckCases("host/services.txt", [](const std::vector<std::string>& fields) {
    std::istringstream arguments(fields[1]);
    return fields[0] == "bitmap"  ? Create(arguments)
           : fields[0] == "erase" ? Erase(arguments)
                                  : Transform(arguments);
  });
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

  BrushObject refused({.realise = RealiseWithIndex, .hatch = HS_CROSS}), solid(0x123456);
  EXPECT_EQ(BRUSHOBJ_pvGetRbrush(&refused), nullptr);
  EXPECT_EQ(BRUSHOBJ_pvGetRbrush(&solid), nullptr);
  BrushObject short_of_memory({.realise = RealiseWithIndex, .hatch = HS_VERTICAL});
  FailNextCall("BRUSHOBJ_pvAllocRbrush");
  EXPECT_EQ(BRUSHOBJ_pvGetRbrush(&short_of_memory), nullptr);
}

}  // namespace
}  // namespace quillo::host
