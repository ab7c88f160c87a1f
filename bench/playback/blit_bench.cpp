#include "base/ddi.h"

#include <algorithm>
#include <vector>

#include "base/gdi_owners.h"
#include "bench/compare_sides.h"
#include "bench/driver_job.h"
#include "capture/hooks.h"

// What a blit of a 1000 x 1000 picture of 24 bits costs from hook to page metafile, as a multiple
// of the same blit made directly from a DIB section.
namespace quillo {
namespace {

constexpr LONG kSide = 1000;
constexpr ULONG kRowBytes = 3 * kSide;

class DriverSide : bench::DriverJob {
 public:
  DriverSide() {
    source_.sizlBitmap = {kSide, kSide};
    source_.cjBits = kRowBytes * kSide;
    source_.pvBits = source_.pvScan0 = bits_.data();
    source_.lDelta = kRowBytes;
    source_.iBitmapFormat = BMF_24BPP;
    source_.fjBitmap = BMF_TOPDOWN;
  }

  void Draw(HDC page) {
    RECTL to = {100, 100, 100 + kSide, 100 + kSide};
    POINTL origin = {0, 0};
    quillo::DrvBitBlt(SurfaceOn(page), &source_, nullptr, nullptr, nullptr, &to, &origin, nullptr,
                      nullptr, nullptr, 0xCCCC);
  }

 private:
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

  void Draw(HDC page) { BitBlt(page, 100, 100, kSide, kSide, dc_.Get(), 0, 0, SRCCOPY); }

 private:
  Bitmap bitmap_;
  CreatedDc dc_{CreateCompatibleDC(nullptr)};
};

}  // namespace
}  // namespace quillo

int main() {
  quillo::DriverSide driver;
  quillo::DirectSide direct;
  using quillo::bench::CompareSides;
  return CompareSides({"blit, 1 a page", 1.8, 15, 1}, driver, direct) |
         CompareSides({"blit, 10 a page", 1.8, 15, 10}, driver, direct);
}
