#include "base/windows.h"

#include <gtest/gtest.h>

#include "capture/records/types.h"
#include "imaging/painting/display_mode.h"
#include "playback/page.h"
#include "playback/picture.h"
#include "support/canvas.h"
#include "support/watch.h"

// What the scripts of playback do not show of pages that are one bitmap.
namespace quillo::test {
namespace {

using namespace records;

TEST(PageBitmap, BandHeaderAndBits_FillThePage) {
  Page page;
  page.Play(REC_DIBHEADER, PayloadOf(HeaderOf(1, 2, 24), 0u));
  const uint32_t mode = imaging::SetDisplayMode(0, 0);
  // Bottom row first: blue below red.
  EXPECT_EQ(page.Play(REC_PAGEBITMAP, PayloadOf(0x000000FFu, 0x00FF0000u)), 1);
  EXPECT_EQ(imaging::SetDisplayMode(0, 0), mode);
  EXPECT_FALSE(page.job_failed);

  const int width = GetDeviceCaps(page.context.page_dc, HORZRES);
  const int height = GetDeviceCaps(page.context.page_dc, VERTRES);
  Canvas canvas(width, height);
  canvas.Play(page.Close().Get());
  for (const int x : {0, width - 1}) {
    EXPECT_EQ(canvas.Pixel(x, 0), 0xFF0000u);
    EXPECT_EQ(canvas.Pixel(x, height - 1), 0x0000FFu);
  }
}

TEST(PageBitmap, OwnPalette_IsThatOfTheDcMeanwhile) {
  const WATCH(SelectPalette) select(reinterpret_cast<HPALETTE>(0x5000));
  const WATCH(RealizePalette) realise(0u);
  Page page;
  page.Play(REC_DIBHEADER, PayloadOf(HeaderOf(1, 1, 8), 0u));
  EXPECT_EQ(page.Play(REC_PAGEBITMAP, PayloadOf(0u)), 1);
  const HDC dc = page.context.page_dc;
  EXPECT_NE(std::get<HPALETTE>(select.calls.at(0)), nullptr);
  EXPECT_EQ(select.calls.at(1), std::tuple(dc, reinterpret_cast<HPALETTE>(0x5000), FALSE));
  EXPECT_EQ(realise.calls, std::vector(2, std::tuple(dc)));
}

}  // namespace
}  // namespace quillo::test
