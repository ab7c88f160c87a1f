#include "base/windows.h"

#include <gtest/gtest.h>
#include <winspool.h>

#include "capture/records/types.h"
#include "imaging/display_mode.h"
#include "playback/canvas.h"
#include "playback/page.h"
#include "playback/picture.h"
#include "support/import_patch.h"

namespace quillo::test {
namespace {

using namespace records;

constexpr uint16_t kDepths[] = {1, 4, 8, 16, 24, 32};
constexpr Picture kPicture = {24};
constexpr int kSourceWidth = kPicture.width;
constexpr int kSourceHeight = kPicture.height;

constexpr Rect kAt = {10, 20, 10 + kSourceWidth, 20 + kSourceHeight};
constexpr Rect kWhole = {0, 0, kSourceWidth, kSourceHeight};

Payload BitBltRecord(const Payload& dib) {
  return PayloadOf(kAt, 0, 0, uint32_t{SRCCOPY}, uint32_t{32}, dib);
}
Payload StretchBltRecord(const Payload& dib) {
  return PayloadOf(kAt, kWhole, 0u, Payload(24), uint32_t{COLORONCOLOR}, uint32_t{68}, dib);
}
Payload AlphaBlendRecord(const Payload& dib) {
  return PayloadOf(kAt, kWhole, uint32_t{0x00FF0000}, uint32_t{40}, dib);
}
Payload SetDibitsRecord(const Payload& dib) { return PayloadOf(kAt, 0, 0, uint32_t{28}, dib); }

struct BlitCase {
  const char* name;
  uint32_t type;
  Payload (*record)(const Payload& dib);
  size_t offset_field;  // of the DIB's offset in the payload
};
constexpr BlitCase kBlitCases[] = {
    {"BitBlt", REC_BITBLT, BitBltRecord, 28},
    {"StretchBlt", REC_STRETCHBLT, StretchBltRecord, 64},
    {"AlphaBlend", REC_ALPHABLEND, AlphaBlendRecord, 36},
    {"SetDIBitsToDevice", REC_SETDIBITSTODEVICE, SetDibitsRecord, 24},
};

TEST(Blits, EveryDepth_PictureOnThePage) {
  for (const BlitCase& blit : kBlitCases) {
    for (const uint16_t bit_count : kDepths) {
      SCOPED_TRACE(testing::Message() << blit.name << ' ' << bit_count);
      const Picture picture = {bit_count};
      Page page;
      EXPECT_EQ(page.Play(blit.type, blit.record(picture.Packed())), 1);
      Canvas canvas(64, 64);
      canvas.Play(page.Close().Get());
      for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
          const bool inside = x >= kAt.left && x < kAt.right && y >= kAt.top && y < kAt.bottom;
          const uint32_t expected = inside ? picture.Colour(x - kAt.left, y - kAt.top) : 0xFFFFFF;
          ASSERT_EQ(canvas.Pixel(x, y), expected) << x << ',' << y;
        }
      }
    }
  }
}

TEST(Blits, PartOfTheSource_BeginsAtItsOrigin) {
  const Payload dib = kPicture.Packed();
  const Rect to = {1, 2, 4, 4};
  const std::pair<uint32_t, Payload> kRecords[] = {
      {REC_BITBLT, PayloadOf(to, 2, 1, uint32_t{SRCCOPY}, uint32_t{32}, dib)},
      {REC_SETDIBITSTODEVICE, PayloadOf(to, 2, 1, uint32_t{28}, dib)},
      {REC_ALPHABLEND, PayloadOf(to, Rect{2, 1, 5, 3}, 0x00FF0000u, uint32_t{40}, dib)},
  };
  for (const auto& [type, record] : kRecords) {
    SCOPED_TRACE(type);
    Page page;
    EXPECT_EQ(page.Play(type, record), 1);
    Canvas canvas(8, 8);
    canvas.Play(page.Close().Get());
    EXPECT_EQ(canvas.Pixel(1, 2), kPicture.Colour(2, 1));
    EXPECT_EQ(canvas.Pixel(3, 3), kPicture.Colour(4, 2));
    EXPECT_EQ(canvas.Pixel(4, 3), 0xFFFFFFu);
  }
}

TEST(Blits, NoBitmapWhereTheRecordSays_NothingDrawn) {
  Page page;
  for (const BlitCase& blit : kBlitCases) {
    SCOPED_TRACE(blit.name);
    const Payload dib = kPicture.Packed();
    // A bitmap that did not pack leaves zeros.
    EXPECT_EQ(page.Play(blit.type, blit.record(Payload(dib.size()))), 0);
    Payload record = blit.record(dib);
    for (const auto offset : {static_cast<uint32_t>(record.size()), UINT32_MAX, 1u}) {
      Store(MutableBytes(record), blit.offset_field, offset);
      EXPECT_EQ(page.Play(blit.type, record), 0) << offset;
    }
    record = blit.record(dib);
    record.pop_back();
    EXPECT_EQ(page.Play(blit.type, record), 0);
  }
  EXPECT_TRUE(ReadRecords(page.Close().Get()).empty());
}

TEST(Blits, RunLengthSource_ConvertedWithItsTrueSize) {
  DibHeader header = HeaderOf(4, 2, 8);
  header.compression = kDibRle8;
  constexpr auto& kPalette = Picture::kPalette;
  const Payload table = PayloadOf(kPalette, Payload(1024 - sizeof kPalette));
  // Two runs of two, end of line, four literal pixels, end of bitmap.
  constexpr uint8_t kStream[] = {2, 1, 2, 2, 0, 0, 0, 4, 3, 4, 5, 0, 0, 1};
  Page page;
  EXPECT_EQ(page.Play(REC_SETDIBITSTODEVICE,
                      PayloadOf(Rect{0, 0, 4, 2}, 0, 0, uint32_t{28}, header, table, kStream)),
            1);
  Canvas canvas(8, 8);
  canvas.Play(page.Close().Get());
  const uint32_t kExpected[2][4] = {{kPalette[3], kPalette[4], kPalette[5], kPalette[0]},
                                    {kPalette[1], kPalette[1], kPalette[2], kPalette[2]}};
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 4; ++x) EXPECT_EQ(canvas.Pixel(x, y), kExpected[y][x]) << x << ',' << y;
  }
}

// What a stretch or blend asks GDI for.
struct {
  Rect to;
  Rect from;  // left, top, width, height
  SIZE bitmap;
  DWORD rop;
} asked;

BOOL Watch(int x, int y, int width, int height, HDC source, int from_x, int from_y, int from_width,
           int from_height, DWORD rop) {
  BITMAP bitmap = {};
  GetObjectW(GetCurrentObject(source, OBJ_BITMAP), sizeof bitmap, &bitmap);
  asked = {{x, y, width, height},
           {from_x, from_y, from_width, from_height},
           {bitmap.bmWidth, bitmap.bmHeight},
           rop};
  return 7;
}
BOOL WINAPI WatchStretchBlt(HDC, int x, int y, int width, int height, HDC source, int from_x,
                            int from_y, int from_width, int from_height, DWORD rop) {
  return Watch(x, y, width, height, source, from_x, from_y, from_width, from_height, rop);
}
BOOL WINAPI WatchAlphaBlend(HDC, int x, int y, int width, int height, HDC source, int from_x,
                            int from_y, int from_width, int from_height, BLENDFUNCTION) {
  return Watch(x, y, width, height, source, from_x, from_y, from_width, from_height, 0);
}

struct ReducedCase {
  const char* name;
  SIZE source;
  Rect from;
  SIZE bitmap;         // as GDI gets it
  Rect expected_from;  // left, top, width, height
};

TEST(Blits, SourceAboveTheLimits_ReducedWithItsRectangle) {
  const ReducedCase kCases[] = {
      {"wide", {4000, 1000}, {100, 100, 4100, 1100}, {2000, 500}, {50, 50, 2000, 500}},
      {"both: the width decides",
       {3000, 5000},
       {0, 0, 3000, 5000},
       {2000, 3333},
       {0, 0, 2000, 3333}},
      {"at the limits", {2000, 2000}, {1, 2, 1001, 1002}, {2000, 2000}, {1, 2, 1000, 1000}},
  };
  const ImportPatch stretch("StretchBlt", WatchStretchBlt);
  const ImportPatch blend("AlphaBlend", WatchAlphaBlend);
  for (const ReducedCase& c : kCases) {
    SCOPED_TRACE(c.name);
    const DibHeader header = HeaderOf(c.source.cx, c.source.cy, 8);
    const Payload dib =
        PayloadOf(header, Payload(1024 + static_cast<size_t>(*DibBitsBytes(header))));
    Page page;
    page.context.job.bitmap_limits = {2000, 2000};
    const Payload kRecords[] = {
        PayloadOf(kAt, c.from, 0u, Payload(24), uint32_t{HALFTONE}, uint32_t{68}, dib),
        PayloadOf(kAt, c.from, 0x01FF0000u, uint32_t{40}, dib)};
    for (const auto type : {REC_STRETCHBLT, REC_ALPHABLEND}) {
      asked = {};
      EXPECT_EQ(page.Play(type, kRecords[type == REC_ALPHABLEND]), 7);
      EXPECT_EQ(asked.to.left, kAt.left);
      EXPECT_EQ(asked.to.right, kSourceWidth);
      EXPECT_EQ(asked.bitmap.cx, c.bitmap.cx);
      EXPECT_EQ(asked.bitmap.cy, c.bitmap.cy);
      EXPECT_EQ(asked.from.left, c.expected_from.left);
      EXPECT_EQ(asked.from.top, c.expected_from.top);
      EXPECT_EQ(asked.from.right, c.expected_from.right);
      EXPECT_EQ(asked.from.bottom, c.expected_from.bottom);
    }
  }
}

TEST(AlphaBlend, AlphaOfThePixels_Blended) {
  // Premultiplied: nothing, half a red, a whole green.
  const Payload dib = PayloadOf(HeaderOf(3, 1, 32), 0u, 0x00000000u, 0x80800000u, 0xFF00FF00u);
  Page page;
  EXPECT_EQ(page.Play(REC_ALPHABLEND, PayloadOf(Rect{0, 0, 3, 1}, Rect{0, 0, 3, 1}, 0x01FF0000u,
                                                uint32_t{40}, dib)),
            1);
  Canvas canvas(3, 1);
  canvas.Play(page.Close().Get());
  EXPECT_EQ(canvas.Pixel(0, 0), 0xFFFFFFu);
  EXPECT_EQ(canvas.Pixel(1, 0), 0xFF7F7Fu);
  EXPECT_EQ(canvas.Pixel(2, 0), 0x00FF00u);
}

COLORADJUSTMENT asked_adjustment;
int adjustments;
BOOL WINAPI WatchAdjustment(HDC, const COLORADJUSTMENT* adjustment) {
  asked_adjustment = *adjustment;
  ++adjustments;
  return TRUE;
}

TEST(StretchBlt, AdjustmentModeAndOperation) {
  const ImportPatch adjust("SetColorAdjustment", WatchAdjustment);
  const ImportPatch stretch("StretchBlt", WatchStretchBlt);
  COLORADJUSTMENT adjustment = {};
  adjustment.caSize = sizeof adjustment;
  adjustment.caContrast = 33;
  adjustments = 0;
  for (const uint32_t flag : {0u, 1u, 2u, 3u}) {
    Page page;
    page.Play(REC_STRETCHBLT, PayloadOf(kAt, kWhole, flag, adjustment, uint32_t{HALFTONE},
                                        uint32_t{68}, kPicture.Packed()));
    EXPECT_EQ(GetStretchBltMode(page.context.page_dc), HALFTONE);
    EXPECT_EQ(asked.rop, static_cast<DWORD>(SRCCOPY));
  }
  EXPECT_EQ(adjustments, 2);
  EXPECT_EQ(asked_adjustment.caContrast, 33);
}

// A printer of the test's own.
BOOL WINAPI FakeGetPrinter(HANDLE printer, DWORD level, BYTE* info, DWORD size, DWORD* needed) {
  EXPECT_EQ(printer, reinterpret_cast<HANDLE>(0x1234));
  EXPECT_EQ(level, 4u);
  *needed = sizeof(PRINTER_INFO_4W);
  if (size < *needed) return FALSE;
  static wchar_t name[] = L"A printer";
  *reinterpret_cast<PRINTER_INFO_4W*>(info) = {name, nullptr, 0};
  return TRUE;
}
const DEVMODEW* asked_settings;
HDC WINAPI FakeCreateDc(const WCHAR* driver, const WCHAR* device, const WCHAR*,
                        const DEVMODEW* settings) {
  EXPECT_EQ(driver, nullptr);
  EXPECT_STREQ(device, L"A printer");
  asked_settings = settings;
  return CreateCompatibleDC(nullptr);
}
HDC WINAPI NoDc(const WCHAR*, const WCHAR*, const WCHAR*, const DEVMODEW*) { return nullptr; }

struct {
  BITMAP bitmap;
  uint16_t first_row;
  POINT mask_origin;
  DWORD rop4;
} asked_mask;
BOOL WINAPI WatchMaskBlt(HDC, int, int, int, int, HDC, int, int, HBITMAP mask, int x, int y,
                         DWORD rop4) {
  GetObjectW(mask, sizeof asked_mask.bitmap, &asked_mask.bitmap);
  GetBitmapBits(mask, sizeof asked_mask.first_row, &asked_mask.first_row);
  asked_mask.mask_origin = {x, y};
  asked_mask.rop4 = rop4;
  return TRUE;
}

Payload MaskBltRecord(const Payload& source, const Payload& mask) {
  const auto mask_offset = static_cast<uint32_t>(44 + source.size());
  return PayloadOf(kAt, 0, 0, 3, 4, 0xAACC1234u, mask_offset, uint32_t{44}, source, mask);
}

// 8x1 pixels, with the colours that masks carry.
Payload Mask(uint32_t bits) { return PayloadOf(HeaderOf(8, 1, 1), 0x00FFFF00u, 0x00FFFFFFu, bits); }

TEST(MaskBlt, BlackAndWhiteMask_MadeOnThePrinter) {
  const ImportPatch printer("GetPrinterW", FakeGetPrinter);
  const ImportPatch dc("CreateDCW", FakeCreateDc);
  const ImportPatch mask_blt("MaskBlt", WatchMaskBlt);
  Page page;
  page.context.job.printer = reinterpret_cast<HANDLE>(0x1234);
  EXPECT_EQ(page.Play(REC_MASKBLT, MaskBltRecord(kPicture.Packed(), Mask(0xA5))), 1);
  EXPECT_EQ(asked_settings, &page.settings.pub);
  EXPECT_EQ(asked_mask.bitmap.bmBitsPixel * asked_mask.bitmap.bmPlanes, 1);
  EXPECT_EQ(asked_mask.bitmap.bmWidth, 8);
  EXPECT_EQ(asked_mask.first_row & 0xFF, 0xA5);
  EXPECT_EQ(asked_mask.mask_origin.x, 3);
  EXPECT_EQ(asked_mask.mask_origin.y, 4);
  EXPECT_EQ(asked_mask.rop4, 0xAACC1234u);
}

TEST(MaskBlt, WithoutPrinterMaskOrSource_NothingDrawn) {
  const Payload source = kPicture.Packed();
  const Payload mask = Mask(0xA5);
  Page page;
  EXPECT_EQ(page.Play(REC_MASKBLT, MaskBltRecord(source, mask)), 0);  // no printer

  const ImportPatch printer("GetPrinterW", FakeGetPrinter);
  page.context.job.printer = reinterpret_cast<HANDLE>(0x1234);
  {
    const ImportPatch dc("CreateDCW", NoDc);
    EXPECT_EQ(page.Play(REC_MASKBLT, MaskBltRecord(source, mask)), 0);
  }
  const ImportPatch dc("CreateDCW", FakeCreateDc);
  EXPECT_EQ(page.Play(REC_MASKBLT, MaskBltRecord(Payload(source.size()), mask)), 0);
  EXPECT_EQ(page.Play(REC_MASKBLT, MaskBltRecord(source, Payload(mask.size()))), 0);
  EXPECT_EQ(page.Play(REC_MASKBLT, MaskBltRecord(source, Picture{4}.Packed())), 0);
  EXPECT_TRUE(ReadRecords(page.Close().Get()).empty());
}

TEST(PageBitmap, BandHeaderAndBits_FillThePage) {
  Page page;
  EXPECT_EQ(page.Play(REC_DIBHEADER, PayloadOf(HeaderOf(1, 2, 24), 0u)), 1);
  const uint32_t mode = imaging::SetDisplayMode(0, 0);
  // Bottom row first: blue below red.
  EXPECT_EQ(page.Play(REC_PAGEBITMAP, PayloadOf(0x000000FFu, 0x00FF0000u)), 1);
  EXPECT_EQ(imaging::SetDisplayMode(0, 0), mode);
  EXPECT_EQ(page.StateFlags(), 0u);

  const int width = GetDeviceCaps(page.context.page_dc, HORZRES);
  const int height = GetDeviceCaps(page.context.page_dc, VERTRES);
  Canvas canvas(width, height);
  canvas.Play(page.Close().Get());
  EXPECT_EQ(canvas.Pixel(0, 0), 0xFF0000u);
  EXPECT_EQ(canvas.Pixel(width - 1, 0), 0xFF0000u);
  EXPECT_EQ(canvas.Pixel(0, height - 1), 0x0000FFu);
  EXPECT_EQ(canvas.Pixel(width - 1, height - 1), 0x0000FFu);
}

TEST(PageBitmap, NotDrawn_JobFailed) {
  const auto play = [](const Payload& header, const Payload& bits, bool with_page) {
    Page page;
    if (!with_page) page.context.page_dc = nullptr;
    page.Play(REC_DIBHEADER, header);
    EXPECT_EQ(page.Play(REC_PAGEBITMAP, bits), 0);
    return page.StateFlags();
  };
  const Payload header = PayloadOf(HeaderOf(1, 2, 24), 0u);
  EXPECT_EQ(play(header, Payload(7), true), kJobFailedBit);
  EXPECT_EQ(play(header, {}, true), kJobFailedBit);
  EXPECT_EQ(play({}, Payload(8), true), kJobFailedBit);
  EXPECT_EQ(play(header, Payload(8), false), kJobFailedBit);
}

TEST(Blits, ManyOfEach_NoObjectLeft) {
  const auto play_page = [] {
    Page page;
    for (int i = 0; i < 20; ++i) {
      for (const BlitCase& blit : kBlitCases)
        page.Play(blit.type, blit.record(Picture{8}.Packed()));
    }
  };
  play_page();
  const uintptr_t before = FreshObjectIndex();
  for (int i = 0; i < 10; ++i) play_page();
  EXPECT_LE(FreshObjectIndex(), before + 10);
}

}  // namespace
}  // namespace quillo::test
