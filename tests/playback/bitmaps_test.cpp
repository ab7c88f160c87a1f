#include "base/windows.h"

#include <gtest/gtest.h>
#include <winspool.h>

#include "capture/records/types.h"
#include "imaging/painting/display_mode.h"
#include "playback/page.h"
#include "playback/picture.h"
#include "support/canvas.h"
#include "support/watch.h"

// What the scripts of playback do not show of bitmaps: masks, and pages that are one bitmap.
// Pictures on their way from hook to page are in round_trip_test.cpp.
namespace quillo::test {
namespace {

using namespace records;

// A printer of the test's own.
const HANDLE kPrinter = reinterpret_cast<HANDLE>(0x1234);
BOOL WINAPI FakeGetPrinter(HANDLE printer, DWORD level, BYTE* info, DWORD size, DWORD* needed) {
  static wchar_t name[] = L"A printer";
  *needed = sizeof(PRINTER_INFO_4W);
  if (printer != kPrinter || level != 4 || size < *needed) return FALSE;
  *reinterpret_cast<PRINTER_INFO_4W*>(info) = {name, nullptr, 0};
  return TRUE;
}

TEST(MaskBlt, BlackAndWhiteMask_MadeOnThePrinter) {
  // 8 x 1 pixels, with the colours that masks carry.
  const Payload good = PayloadOf(HeaderOf(8, 1, 1), 0x00FFFF00u, 0x00FFFFFFu, 0xA5u);
  const Payload picture = Picture{24}.Packed(), zeros(good.size());
  Page page;
  const auto play = [&page](const Payload& source, const Payload& mask) {
    const auto mask_offset = static_cast<uint32_t>(44 + source.size());
    return page.Play(REC_MASKBLT, PayloadOf(Rect{10, 20, 15, 23}, 1, 2, 3, 4, 0xAACC1234u,
                                            mask_offset, 44u, source, mask));
  };
  EXPECT_EQ(play(picture, good), 0);  // no printer
  const WATCH(GetPrinterW) printer(FakeGetPrinter);
  page.context.job.printer = kPrinter;
  {
    const WATCH(CreateDCW) dc(nullptr);
    EXPECT_EQ(play(picture, good), 0);
  }
  const WATCH(CreateDCW) dc([](auto, const WCHAR* device, auto, auto) {
    EXPECT_STREQ(device, L"A printer");
    return CreateCompatibleDC(nullptr);
  });
  EXPECT_EQ(play(zeros, good), 0);
  EXPECT_EQ(play(picture, zeros), 0);
  EXPECT_EQ(play(picture, picture), 0);  // no mask

  const WATCH(CreateDIBitmap)
      create([](auto, auto, auto, const void* bits, const BITMAPINFO* info, auto) {
        const auto* colours = reinterpret_cast<const DWORD*>(info->bmiColors);
        EXPECT_EQ(colours[0], 0u);
        EXPECT_EQ(colours[1], 0xFFFFFFFFu);
        EXPECT_EQ(*static_cast<const DWORD*>(bits), 0xA5u);
        return CreateBitmap(8, 1, 1, 1, nullptr);
      });
  const WATCH(MaskBlt) mask_blt(TRUE);
  EXPECT_EQ(play(picture, good), 1);
  EXPECT_EQ(std::get<const DEVMODEW*>(dc.calls.back()), &page.settings.pub);
  const auto& [to, x, y, width, height, from, from_x, from_y, bitmap, mask_x, mask_y, rop4] =
      mask_blt.calls.at(0);
  EXPECT_EQ((std::vector{x, y, width, height, from_x, from_y, mask_x, mask_y}),
            (std::vector{10, 20, 5, 3, 1, 2, 3, 4}));
  EXPECT_EQ(rop4, 0xAACC1234u);
  EXPECT_TRUE(page.EndsEmpty());
}

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
