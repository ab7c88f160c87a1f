#include "base/ddi.h"

#include <algorithm>
#include <vector>

#include "base/gdi_owners.h"
#include "bench/compare_sides.h"
#include "capture/hooks.h"
#include "host/engine/services/surfaces.h"
#include "support/driver_job.h"

// What a blit of a 1000 x 1000 picture of 24 bits costs from hook to page metafile, as a multiple
// of the same blit made directly from a DIB section.
int main() {
  using namespace quillo;
  constexpr LONG kSide = 1000;
  constexpr ULONG kBytes = 3 * kSide * kSide;
  test::DriverJob job;
  std::vector<BYTE> bits(kBytes, BYTE{0x5A});
  host::Surface source({kSide, kSide}, BMF_24BPP, true, bits.data(), kBytes, 3 * kSide);
  const auto driver = [&](HDC page) {
    RECTL to = {100, 100, 100 + kSide, 100 + kSide};
    POINTL origin = {0, 0};
    quillo::DrvBitBlt(job.SurfaceOn(page), &source, nullptr, nullptr, nullptr, &to, &origin,
                      nullptr, nullptr, nullptr, 0xCCCC);
  };

  BITMAPINFO info = {};
  info.bmiHeader = {sizeof info.bmiHeader, kSide, -kSide, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  void* pixels = nullptr;
  const Bitmap bitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
  std::fill_n(static_cast<BYTE*>(pixels), kBytes, BYTE{0x5A});
  const CreatedDc dc(CreateCompatibleDC(nullptr));
  SelectObject(dc.Get(), bitmap.Get());
  const auto direct = [&](HDC page) {
    BitBlt(page, 100, 100, kSide, kSide, dc.Get(), 0, 0, SRCCOPY);
  };
  return bench::CompareSides({"blit 1000 x 1000 x 24, 1 a page", 1.6, 15, 1}, driver, direct) |
         bench::CompareSides({"blit 1000 x 1000 x 24, 10 a page", 1.4, 15, 10}, driver, direct);
}
