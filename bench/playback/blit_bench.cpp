#include "base/ddi.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "base/gdi_owners.h"
#include "capture/hooks.h"
#include "driver/device.h"
#include "job/job.h"

// What a blit of a 1000 x 1000 picture of 24 bits costs from hook to page metafile, as a multiple
// of the same blit made directly from a DIB section. Both sides run in turn, so that the machine's
// load hits both; the median of the rounds' ratios counts.
namespace quillo {
namespace {

constexpr LONG kSide = 1000;
constexpr ULONG kRowBytes = 3 * kSide;
constexpr int kRounds = 15;

class DriverSide {
 public:
  DriverSide() {
    device_.signature = device_.closing_signature = kDeviceSignature;
    device_.resolution = {600, 600};
    device_.job = &job_;
    target_.dhpdev = reinterpret_cast<DHPDEV>(&device_);
    source_.sizlBitmap = {kSide, kSide};
    source_.cjBits = kRowBytes * kSide;
    source_.pvBits = source_.pvScan0 = bits_.data();
    source_.lDelta = kRowBytes;
    source_.iBitmapFormat = BMF_24BPP;
    source_.fjBitmap = BMF_TOPDOWN;
  }

  void Blit(HDC page) {
    job_.playback.page_dc = page;
    RECTL to = {100, 100, 100 + kSide, 100 + kSide};
    POINTL origin = {0, 0};
    quillo::DrvBitBlt(&target_, &source_, nullptr, nullptr, nullptr, &to, &origin, nullptr, nullptr,
                      nullptr, 0xCCCC);
  }

 private:
  CQloPrinter job_{HeapCreate(0, 0, 0), nullptr, 1};
  DEVICE_PDEV device_ = {};
  SURFOBJ target_ = {};
  SURFOBJ source_ = {};
  std::vector<BYTE> bits_ = std::vector<BYTE>(kRowBytes * kSide, BYTE{0x5A});
};

class DirectSide {
 public:
  DirectSide() {
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof info.bmiHeader, kSide, -kSide, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    bitmap_.Reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    std::fill_n(static_cast<BYTE*>(bits), kRowBytes * kSide, BYTE{0x5A});
    SelectObject(dc_.Get(), bitmap_.Get());
  }

  void Blit(HDC page) { BitBlt(page, 100, 100, kSide, kSide, dc_.Get(), 0, 0, SRCCOPY); }

 private:
  Bitmap bitmap_;
  CreatedDc dc_{CreateCompatibleDC(nullptr)};
};

// Milliseconds of each of `count` blits on one fresh metafile.
template <typename Side>
double Time(Side& side, int count) {
  const MetafileDc page(CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr));
  LARGE_INTEGER frequency, begin, end;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&begin);
  for (int i = 0; i < count; ++i) side.Blit(page.Get());
  QueryPerformanceCounter(&end);
  return static_cast<double>(end.QuadPart - begin.QuadPart) * 1e3 /
         static_cast<double>(frequency.QuadPart) / count;
}

double Median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

int Run() {
  DriverSide driver;
  DirectSide direct;
  for (const int count : {1, 10}) {
    std::vector<double> ratios, driver_times, direct_times;
    for (int round = 0; round < kRounds; ++round) {
      driver_times.push_back(Time(driver, count));
      direct_times.push_back(Time(direct, count));
      ratios.push_back(driver_times.back() / direct_times.back());
    }
    std::printf("blit, %d a page: driver %.2f ms, direct %.2f ms, ratio %.3f (at most 1.8)\n",
                count, Median(driver_times), Median(direct_times), Median(ratios));
  }
  return 0;
}

}  // namespace
}  // namespace quillo

int main() { return quillo::Run(); }
