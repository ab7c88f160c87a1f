#include "base/ddi.h"

#include <vector>

#include "bench/compare_sides.h"
#include "bench/driver_job.h"
#include "capture/hooks.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/paths.h"

// What a stroke costs on its way through capture, sink and playback, as a multiple of the same GDI
// calls made directly on a metafile DC.
namespace quillo {
namespace {

constexpr ULONG kColour = 0x112233;

const std::vector<POINTFIX> kPoints = {{0, 0},       {1600, 160}, {3200, 80},
                                       {4800, 1600}, {80, 320},   {960, 2400},
                                       {160, 480},   {4000, 800}, {16, 16}};

class DriverSide : bench::DriverJob {
 public:
  DriverSide() {
    attributes_.fl = LA_GEOMETRIC;
    attributes_.iJoin = JOIN_MITER;
    attributes_.elWidth.e = 5;
    attributes_.eMiterLimit = 10;
  }

  void Draw(HDC page) {
    quillo::DrvStrokePath(SurfaceOn(page), &path_, nullptr, nullptr, &brush_, nullptr, &attributes_,
                          R2_COPYPEN);
  }

 private:
  LINEATTRS attributes_ = {};
  host::BrushObject brush_{kColour};
  host::PathObject path_{{{PD_BEGINSUBPATH, kPoints}}};
};

struct DirectSide {
  static void Draw(HDC page) {
    ModifyWorldTransform(page, nullptr, MWT_IDENTITY);
    SetGraphicsMode(page, GM_COMPATIBLE);
    SaveDC(page);
    SetMiterLimit(page, 10, nullptr);
    const LOGBRUSH brush = {BS_SOLID, RGB(0x11, 0x22, 0x33), 0};
    const HPEN pen = ExtCreatePen(PS_GEOMETRIC | PS_JOIN_MITER, 5, &brush, 0, nullptr);
    const HGDIOBJ previous = SelectObject(page, pen);
    SetROP2(page, R2_COPYPEN);
    BeginPath(page);
    SetBkColor(page, kColour);
    MoveToEx(page, kPoints[0].x / 16, kPoints[0].y / 16, nullptr);
    for (size_t i = 1; i < kPoints.size(); ++i) LineTo(page, kPoints[i].x / 16, kPoints[i].y / 16);
    EndPath(page);
    StrokePath(page);
    SelectObject(page, previous);
    DeleteObject(pen);
    RestoreDC(page, -1);
  }
};

}  // namespace
}  // namespace quillo

int main() {
  quillo::DriverSide driver;
  quillo::DirectSide direct;
  return quillo::bench::CompareSides({"stroke", 1.25, 801, 40}, driver, direct);
}
