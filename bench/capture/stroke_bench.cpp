#include "base/ddi.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "base/gdi_owners.h"
#include "capture/hooks.h"
#include "driver/device.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/paths.h"
#include "job/job.h"

// What a stroke costs on its way through capture, sink and playback, as a multiple of the same GDI
// calls made directly on a metafile DC. Both sides run in turn, so that the machine's load hits
// both; the median of the rounds' ratios counts.
namespace quillo {
namespace {

constexpr int kRounds = 61;
constexpr int kCallsPerRound = 400;
constexpr ULONG kColour = 0x112233;

const std::vector<POINTFIX> kPoints = {{0, 0},       {1600, 160}, {3200, 80},
                                       {4800, 1600}, {80, 320},   {960, 2400},
                                       {160, 480},   {4000, 800}, {16, 16}};

class DriverSide {
 public:
  DriverSide() {
    device_.signature = device_.closing_signature = kDeviceSignature;
    device_.resolution = {600, 600};
    device_.job = &job_;
    surface_.dhpdev = reinterpret_cast<DHPDEV>(&device_);
    attributes_.fl = LA_GEOMETRIC;
    attributes_.iJoin = JOIN_MITER;
    attributes_.elWidth.e = 5;
    attributes_.eMiterLimit = 10;
  }

  void Stroke(HDC page) {
    job_.playback.page_dc = page;
    quillo::DrvStrokePath(&surface_, &path_, nullptr, nullptr, &brush_, nullptr, &attributes_,
                          R2_COPYPEN);
  }

 private:
  CQloPrinter job_{HeapCreate(0, 0, 0), nullptr, 1};
  DEVICE_PDEV device_ = {};
  SURFOBJ surface_ = {};
  LINEATTRS attributes_ = {};
  host::BrushObject brush_{kColour};
  host::PathObject path_{{{PD_BEGINSUBPATH, kPoints}}};
};

struct DirectSide {
  static void Stroke(HDC page) {
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

// Seconds that a round of strokes on a fresh metafile takes.
template <typename Side>
double Time(Side& side) {
  const MetafileDc page(CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr));
  LARGE_INTEGER frequency, begin, end;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&begin);
  for (int i = 0; i < kCallsPerRound; ++i) side.Stroke(page.Get());
  QueryPerformanceCounter(&end);
  return static_cast<double>(end.QuadPart - begin.QuadPart) /
         static_cast<double>(frequency.QuadPart);
}

double Median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

int Run() {
  DriverSide driver;
  DirectSide direct;
  std::vector<double> ratios, driver_times, direct_times;
  for (int round = 0; round < kRounds; ++round) {
    driver_times.push_back(Time(driver));
    direct_times.push_back(Time(direct));
    ratios.push_back(driver_times.back() / direct_times.back());
  }
  std::printf("stroke: driver %.2f us, direct %.2f us, ratio %.3f (at most 1.25)\n",
              Median(driver_times) / kCallsPerRound * 1e6,
              Median(direct_times) / kCallsPerRound * 1e6, Median(ratios));
  return 0;
}

}  // namespace
}  // namespace quillo

int main() { return quillo::Run(); }
