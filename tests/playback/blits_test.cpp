#include "base/windows.h"

#include <gtest/gtest.h>
#include <winspool.h>

#include "capture/records/types.h"
#include "imaging/painting/display_mode.h"
#include "playback/page.h"
#include "playback/picture.h"
#include "support/canvas.h"
#include "support/holdings.h"
#include "support/watch.h"

// How records reach GDI; pictures on their way from hook to page are in round_trip_test.cpp.
namespace quillo::test {
namespace {

using namespace records;

constexpr Rect kAt = {10, 20, 15, 23};
constexpr Rect kWhole = {0, 0, 5, 3};
const Payload kPicture = Picture{24}.Packed();

struct BlitCase {
  uint32_t type;
  Payload fixed_part;  // ends with the DIB's offset
};
const BlitCase kBlitCases[] = {
    {REC_BITBLT, PayloadOf(kAt, 0, 0, uint32_t{SRCCOPY}, 32u)},
    {REC_STRETCHBLT, PayloadOf(kAt, kWhole, 0u, Payload(24), uint32_t{COLORONCOLOR}, 68u)},
    {REC_ALPHABLEND, PayloadOf(kAt, kWhole, 0x00FF0000u, 40u)},
    {REC_SETDIBITSTODEVICE, PayloadOf(kAt, 0, 0, 28u)},
};

TEST(Blits, NoBitmapWhereTheRecordSays_NothingDrawn) {
  Page page;
  const uintptr_t before = LiveGdiObjects();
  for (const BlitCase& c : kBlitCases) {
    SCOPED_TRACE(c.type);
    // A bitmap that did not pack leaves zeros.
    EXPECT_EQ(page.Play(c.type, PayloadOf(c.fixed_part, Payload(kPicture.size()))), 0);
    Payload record = PayloadOf(c.fixed_part, kPicture);
    record.pop_back();
    EXPECT_EQ(page.Play(c.type, record), 0);
    for (const uint32_t offset : {99999u, UINT32_MAX, 1u}) {
      Store(MutableBytes(record), c.fixed_part.size() - 4, offset);
      EXPECT_EQ(page.Play(c.type, record), 0) << offset;
    }
  }
  EXPECT_EQ(LiveGdiObjects(), before);
  EXPECT_TRUE(page.Records().empty());

  // What is drawn leaves no object either.
  const auto play_page = [] {
    Page whole;
    for (int i = 0; i < 20; ++i) {
      for (const BlitCase& c : kBlitCases) {
        EXPECT_EQ(whole.Play(c.type, PayloadOf(c.fixed_part, kPicture)), 1);
      }
    }
  };
  play_page();
  const uintptr_t after_one = LiveGdiObjects();
  for (int i = 0; i < 10; ++i) play_page();
  EXPECT_LE(LiveGdiObjects(), after_one + 10);
}

TEST(Blits, RunLengthSource_ConvertedWithItsTrueSize) {
  DibHeader header = HeaderOf(4, 2, 8);
  header.compression = kDibRle8;
  constexpr auto& kColours = Picture::kPalette;
  const Payload table = PayloadOf(kColours, Payload(1024 - sizeof kColours));
  // Two runs of two, end of line, four literal pixels, end of bitmap.
  constexpr uint8_t kStream[] = {2, 1, 2, 2, 0, 0, 0, 4, 3, 4, 5, 0, 0, 1};
  Page page;
  EXPECT_EQ(page.Play(REC_SETDIBITSTODEVICE,
                      PayloadOf(Rect{0, 0, 4, 2}, 0, 0, 28u, header, table, kStream)),
            1);
  Canvas canvas(4, 2);
  canvas.Play(page.Close().Get());
  const size_t kExpected[2][4] = {{3, 4, 5, 0}, {1, 1, 2, 2}};
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 4; ++x) EXPECT_EQ(canvas.Pixel(x, y), kColours[kExpected[y][x]]);
  }
}

TEST(AlphaBlend, AlphaOfThePixels_Blended) {
  // Premultiplied: nothing, half a red, a whole green.
  const Payload dib = PayloadOf(HeaderOf(3, 1, 32), 0u, 0x00000000u, 0x80800000u, 0xFF00FF00u);
  const Rect r = {0, 0, 3, 1};
  Page page;
  EXPECT_EQ(page.Play(REC_ALPHABLEND, PayloadOf(r, r, 0x01FF0000u, 40u, dib)), 1);
  Canvas canvas(3, 1);
  canvas.Play(page.Close().Get());
  EXPECT_EQ(canvas.Pixel(0, 0), 0xFFFFFFu);
  EXPECT_EQ(canvas.Pixel(1, 0), 0xFF7F7Fu);
  EXPECT_EQ(canvas.Pixel(2, 0), 0x00FF00u);
}

TEST(Blits, SourceAboveTheLimits_ReducedWithItsRectangle) {
  const struct {
    int32_t width, height;
    Rect from;
    std::vector<int> expected;
  } kCases[] = {
      {4000, 1000, {100, 100, 4100, 1100}, {10, 20, 5, 3, 50, 50, 2000, 500, 2000, 500}},
      {1000, 4000, {100, 100, 4100, 1100}, {10, 20, 5, 3, 50, 50, 2000, 500, 500, 2000}},
      {3000, 5000, {0, 0, 3000, 5000}, {10, 20, 5, 3, 0, 0, 2000, 3333, 2000, 3333}},
      {5000, 3000, {0, 0, 5000, 3000}, {10, 20, 5, 3, 0, 0, 2000, 1200, 2000, 1200}},
      {2000, 2000, {1, 2, 1001, 1002}, {10, 20, 5, 3, 1, 2, 1000, 1000, 2000, 2000}},
  };
  // Destination and source as left, top, width, height; the bitmap's size.
  std::vector<int> asked;
  const auto note = [&asked](auto, int x, int y, int width, int height, HDC source, int from_x,
                             int from_y, int from_width, int from_height, auto) {
    BITMAP bitmap = {};
    GetObjectW(GetCurrentObject(source, OBJ_BITMAP), sizeof bitmap, &bitmap);
    asked = {x,      y,          width,       height,         from_x,
             from_y, from_width, from_height, bitmap.bmWidth, bitmap.bmHeight};
    return 7;
  };
  const WATCH(StretchBlt) stretch(note);
  const WATCH(AlphaBlend) blend(note);
  for (const auto& c : kCases) {
    const Payload dib = Picture{.bit_count = 1, .width = c.width, .height = c.height}.Packed();
    Page page;
    page.context.job.bitmap_limits = {2000, 2000};
    for (const auto& [type, record] :
         {std::pair{REC_STRETCHBLT, PayloadOf(kAt, c.from, 0u, Payload(24), 4u, 68u, dib)},
          {REC_ALPHABLEND, PayloadOf(kAt, c.from, 0x01FF0000u, 40u, dib)}}) {
      asked.clear();
      EXPECT_EQ(page.Play(type, record), 7);
      EXPECT_EQ(asked, c.expected);
    }
  }
}

TEST(StretchBlt, AdjustmentModeAndOperation) {
  for (const uint32_t flag : {0u, 1u, 2u, 3u}) {
    const WATCH(StretchBlt) stretch(TRUE);
    const WATCH(SetColorAdjustment) adjust([](auto, const COLORADJUSTMENT* adjustment) {
      EXPECT_EQ(adjustment->caContrast, 33);
      return TRUE;
    });
    COLORADJUSTMENT adjustment = {};
    adjustment.caContrast = 33;
    Page page;
    page.Play(REC_STRETCHBLT,
              PayloadOf(kAt, kWhole, flag, adjustment, uint32_t{HALFTONE}, 68u, kPicture));
    EXPECT_EQ(adjust.calls.size(), flag & 1);
    EXPECT_EQ(GetStretchBltMode(page.context.page_dc), HALFTONE);
    EXPECT_EQ(std::get<DWORD>(stretch.calls.at(0)), static_cast<DWORD>(SRCCOPY));
  }
}

// A printer of the test's own.
const HANDLE kPrinter = reinterpret_cast<HANDLE>(0x1234);
BOOL WINAPI FakeGetPrinter(HANDLE printer, DWORD level, BYTE* info, DWORD size, DWORD* needed) {
  static wchar_t name[] = L"A printer";
  *needed = sizeof(PRINTER_INFO_4W);
  if (printer != kPrinter || level != 4 || size < *needed) return FALSE;
  *reinterpret_cast<PRINTER_INFO_4W*>(info) = {name, nullptr, 0};
  return TRUE;
}
Payload MaskBltRecord(const Payload& source, const Payload& mask) {
  const auto mask_offset = static_cast<uint32_t>(44 + source.size());
  return PayloadOf(kAt, 1, 2, 3, 4, 0xAACC1234u, mask_offset, 44u, source, mask);
}

TEST(MaskBlt, BlackAndWhiteMask_MadeOnThePrinter) {
  // 8 x 1 pixels, with the colours that masks carry.
  const Payload mask = PayloadOf(HeaderOf(8, 1, 1), 0x00FFFF00u, 0x00FFFFFFu, 0xA5u);
  const Payload zeros(mask.size());
  Page page;
  EXPECT_EQ(page.Play(REC_MASKBLT, MaskBltRecord(kPicture, mask)), 0);  // no printer

  const WATCH(GetPrinterW) printer(FakeGetPrinter);
  page.context.job.printer = kPrinter;
  {
    const WATCH(CreateDCW) dc(nullptr);
    EXPECT_EQ(page.Play(REC_MASKBLT, MaskBltRecord(kPicture, mask)), 0);
  }
  const WATCH(CreateDCW) dc([](auto, const WCHAR* device, auto, auto) {
    EXPECT_STREQ(device, L"A printer");
    return CreateCompatibleDC(nullptr);
  });
  EXPECT_EQ(page.Play(REC_MASKBLT, MaskBltRecord(zeros, mask)), 0);
  EXPECT_EQ(page.Play(REC_MASKBLT, MaskBltRecord(kPicture, zeros)), 0);
  EXPECT_EQ(page.Play(REC_MASKBLT, MaskBltRecord(kPicture, kPicture)), 0);  // no mask

  const WATCH(CreateDIBitmap)
      create([](auto, auto, auto, const void* bits, const BITMAPINFO* info, auto) {
        const auto* colours = reinterpret_cast<const DWORD*>(info->bmiColors);
        EXPECT_EQ(colours[0], 0u);
        EXPECT_EQ(colours[1], 0xFFFFFFFFu);
        EXPECT_EQ(*static_cast<const DWORD*>(bits), 0xA5u);
        return CreateBitmap(8, 1, 1, 1, nullptr);
      });
  const WATCH(MaskBlt) mask_blt(TRUE);
  EXPECT_EQ(page.Play(REC_MASKBLT, MaskBltRecord(kPicture, mask)), 1);
  EXPECT_EQ(std::get<const DEVMODEW*>(dc.calls.back()), &page.settings.pub);
  const auto& [to, x, y, width, height, from, from_x, from_y, bitmap, mask_x, mask_y, rop4] =
      mask_blt.calls.at(0);
  EXPECT_EQ((std::vector{x, y, width, height, from_x, from_y, mask_x, mask_y}),
            (std::vector{10, 20, 5, 3, 1, 2, 3, 4}));
  EXPECT_EQ(rop4, 0xAACC1234u);
  EXPECT_TRUE(page.Records().empty());
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

TEST(PageBitmap, NotDrawn_JobFailed) {
  const Payload header = PayloadOf(HeaderOf(1, 2, 24), 0u);
  const struct {
    Payload header, bits;
    bool with_page;
  } kCases[] = {{header, Payload(7), true},
                {header, {}, true},
                {{}, Payload(8), true},
                {header, Payload(8), false}};
  for (const auto& c : kCases) {
    Page page;
    if (!c.with_page) page.context.page_dc = nullptr;
    page.Play(REC_DIBHEADER, c.header);
    EXPECT_EQ(page.Play(REC_PAGEBITMAP, c.bits), 0);
    EXPECT_TRUE(page.job_failed);
  }
}

}  // namespace
}  // namespace quillo::test
