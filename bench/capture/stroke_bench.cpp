#include "base/ddi.h"

#include <vector>

#include "bench/compare_sides.h"
#include "capture/hooks.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/paths.h"
#include "support/driver_job.h"

// What a stroke costs on its way through capture, sink and playback, as a multiple of the same GDI
// calls made directly on a metafile DC.
int main() {
  using namespace quillo;
  constexpr ULONG kColour = 0x112233;
  const std::vector<POINTFIX> points = {{0, 0},       {1600, 160}, {3200, 80},
                                        {4800, 1600}, {80, 320},   {960, 2400},
                                        {160, 480},   {4000, 800}, {16, 16}};
  test::DriverJob job;
  host::BrushObject brush{kColour};
  host::PathObject path{{{PD_BEGINSUBPATH, points}}};
  LINEATTRS attributes = {};
  attributes.fl = LA_GEOMETRIC;
  attributes.iJoin = JOIN_MITER;
  attributes.elWidth.e = 5;
  attributes.eMiterLimit = 10;
  const auto driver = [&](HDC page) {
    quillo::DrvStrokePath(job.SurfaceOn(page), &path, nullptr, nullptr, &brush, nullptr,
                          &attributes, R2_COPYPEN);
  };
  const auto direct = [&](HDC page) {
    ModifyWorldTransform(page, nullptr, MWT_IDENTITY);
    SetGraphicsMode(page, GM_COMPATIBLE);
    SaveDC(page);
    SetMiterLimit(page, 10, nullptr);
    const LOGBRUSH black = {BS_SOLID, RGB(0x11, 0x22, 0x33), 0};
    const HPEN pen = ExtCreatePen(PS_GEOMETRIC | PS_JOIN_MITER, 5, &black, 0, nullptr);
    const HGDIOBJ previous = SelectObject(page, pen);
    SetROP2(page, R2_COPYPEN);
    BeginPath(page);
    SetBkColor(page, kColour);
    MoveToEx(page, points[0].x / 16, points[0].y / 16, nullptr);
    for (size_t i = 1; i < points.size(); ++i) LineTo(page, points[i].x / 16, points[i].y / 16);
    EndPath(page);
    StrokePath(page);
    SelectObject(page, previous);
    DeleteObject(pen);
    RestoreDC(page, -1);
  };
  return bench::CompareSides({"stroke of 9 points", 1.10, 801, 40}, driver, direct);
}
