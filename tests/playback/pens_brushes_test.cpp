#include <gtest/gtest.h>

#include "capture/records/types.h"
#include "playback/page.h"
#include "playback/picture.h"
#include "support/import_patch.h"

namespace quillo::test {
namespace {

using namespace records;

Payload SolidBrush(COLORREF colour, uint32_t usage) {
  return PayloadOf(uint32_t{BS_SOLID}, colour, 0u, usage, 0u, uint8_t{0});
}

// A pattern of 8x8 pixels, 1 bit each.
Payload PatternBrush(uint32_t usage) {
  const Payload pattern = Picture{.bit_count = 1, .width = 8, .height = 8}.Packed();
  return PayloadOf(uint32_t{BS_DIBPATTERNPT}, 0x112233u, 0u, usage,
                   static_cast<uint32_t>(pattern.size()), pattern, uint8_t{0});
}

Payload WidePen(uint32_t width) { return PayloadOf(uint32_t{PS_GEOMETRIC}, width, 0u, 0u); }

struct ObjectCase {
  const char* name;
  uint32_t type;
  Payload payload;
  std::function<HGDIOBJ()> create;
};

const ObjectCase kObjectCases[] = {
    {"pen", REC_CREATEPEN, PayloadOf(uint32_t{PS_DASH}, 3, 0, COLORREF{0x00FF00}),
     [] { return CreatePen(PS_DASH, 3, 0x00FF00); }},
    {"geometric pen", REC_EXTCREATEPEN,
     PayloadOf(uint32_t{PS_GEOMETRIC | PS_JOIN_MITER}, 9u, 0u, 0u),
     [] {
       const LOGBRUSH black = {};
       return ExtCreatePen(PS_GEOMETRIC | PS_JOIN_MITER, 9, &black, 0, nullptr);
     }},
    {"styled pen", REC_EXTCREATEPEN,
     PayloadOf(uint32_t{PS_GEOMETRIC | PS_USERSTYLE}, 2u, 2u, 5u, 6u, 0u),
     [] {
       const LOGBRUSH black = {};
       const DWORD entries[] = {5, 6};
       return ExtCreatePen(PS_GEOMETRIC | PS_USERSTYLE, 2, &black, 2, entries);
     }},
    {"solid brush", REC_CREATEBRUSH, SolidBrush(0x0000FF, kFillBrush),
     [] { return CreateSolidBrush(0x0000FF); }},
    {"hatched brush", REC_CREATEBRUSH,
     PayloadOf(uint32_t{BS_HATCHED}, 0xFF0000u, uint32_t{HS_CROSS}, 0u, 0u, uint8_t{0}),
     [] { return CreateHatchBrush(HS_CROSS, 0xFF0000); }},
    {"pattern brush", REC_CREATEBRUSH, PatternBrush(kFillBrush),
     [] {
       const Payload record = PatternBrush(kFillBrush);
       return CreateDIBPatternBrushPt(record.data() + kBrushPatternOffset, DIB_RGB_COLORS);
     }},
};

TEST(PensAndBrushes, EachKind_SelectedAndReplaced) {
  for (const ObjectCase& c : kObjectCases) {
    SCOPED_TRACE(c.name);
    Page page;
    EXPECT_EQ(page.Play(c.type, c.payload), 1);
    EXPECT_EQ(page.Play(c.type, c.payload), 1);
    page.Play(REC_RESTOREDC);
    EXPECT_EQ(page.context.current_pen, nullptr);
    EXPECT_EQ(page.context.previous_pen, nullptr);
    EXPECT_EQ(page.context.current_brush, nullptr);
    EXPECT_EQ(page.context.previous_brush, nullptr);
    EXPECT_EQ(ReadRecords(page.Close().Get()), RecordDirect([&](HDC dc) {
                for (int i = 0; i < 2; ++i) {
                  const HGDIOBJ object = c.create();
                  { const SelectScope selected(dc, object); }
                  DeleteObject(object);
                }
                RestoreDC(dc, -1);
              }));
  }
}

TEST(PensAndBrushes, ManyOfEach_NoObjectLeft) {
  const auto play_page = [] {
    Page page;
    for (int i = 0; i < 50; ++i) {
      for (const ObjectCase& c : kObjectCases) page.Play(c.type, c.payload);
    }
  };
  play_page();
  const uintptr_t before = FreshObjectIndex();
  for (int i = 0; i < 10; ++i) play_page();
  EXPECT_LE(FreshObjectIndex(), before + 10);
}

HPEN WINAPI NoPen(const LOGPEN*) { return nullptr; }
HBRUSH WINAPI NoBrush(const LOGBRUSH*) { return nullptr; }
HPEN WINAPI NoExtPen(DWORD, DWORD, const LOGBRUSH*, DWORD, const DWORD*) { return nullptr; }

TEST(PensAndBrushes, FailedCreation_OldObjectGoneAndNoneCurrent) {
  Page page;
  for (const ObjectCase& c : kObjectCases) {
    for (const ObjectCase& old : kObjectCases) page.Play(old.type, old.payload);
    const ImportPatch pen("CreatePenIndirect", NoPen);
    const ImportPatch extended_pen("ExtCreatePen", NoExtPen);
    const ImportPatch brush("CreateBrushIndirect", NoBrush);
    EXPECT_EQ(page.Play(c.type, c.payload), 1);
    const bool is_brush = c.type == REC_CREATEBRUSH;
    EXPECT_EQ(page.context.current_pen == nullptr, !is_brush);
    EXPECT_EQ(page.context.previous_pen == nullptr, !is_brush);
    EXPECT_EQ(page.context.current_brush == nullptr, is_brush);
    EXPECT_EQ(page.context.previous_brush == nullptr, is_brush);
  }
}

// What playback asks GDI for: this Wine's metafiles drop a pen's brush and dashes.
struct {
  DWORD style;
  DWORD width;
  LOGBRUSH brush;
  DWORD count;
  std::vector<DWORD> entries;
} asked_pen;

HPEN WINAPI WatchExtCreatePen(DWORD style, DWORD width, const LOGBRUSH* brush, DWORD count,
                              const DWORD* entries) {
  asked_pen = {style, width, *brush, count, {}};
  if (entries != nullptr) asked_pen.entries.assign(entries, entries + count);
  return nullptr;
}

TEST(ExtendedPen, StyleEntries_PassedOn) {
  const ImportPatch patch("ExtCreatePen", WatchExtCreatePen);
  Page page(0x10000);
  const uint32_t style = PS_GEOMETRIC | PS_USERSTYLE | PS_ENDCAP_FLAT;
  page.Play(REC_EXTCREATEPEN, PayloadOf(style, 4u, 3u, 10u, 20u, 30u, 0u));
  EXPECT_EQ(asked_pen.style, style);
  EXPECT_EQ(asked_pen.width, 4u);
  EXPECT_EQ(asked_pen.entries, (std::vector<DWORD>{10, 20, 30}));
  EXPECT_EQ(asked_pen.brush.lbStyle, static_cast<UINT>(BS_SOLID));
  EXPECT_EQ(asked_pen.brush.lbColor, 0u);

  // More entries than the heap holds: their count stays.
  const uint32_t many = 1 << 20;
  EXPECT_EQ(page.Play(REC_EXTCREATEPEN, PayloadOf(style, 4u, many, Payload(many * 4))), 1);
  EXPECT_EQ(asked_pen.count, many);
  EXPECT_TRUE(asked_pen.entries.empty());
}

TEST(ExtendedPen, MoreEntriesThanThePayloadHolds_NothingChanges) {
  Page page;
  page.Play(REC_CREATEPEN, kObjectCases[0].payload);
  const HPEN pen = page.context.current_pen;
  for (const uint32_t count : {2u, 0x40000000u, UINT32_MAX}) {
    EXPECT_EQ(page.Play(REC_EXTCREATEPEN, PayloadOf(uint32_t{PS_GEOMETRIC}, 2u, count, 0u)), 0);
  }
  EXPECT_EQ(page.context.current_pen, pen);
}

TEST(ExtendedPen, Cosmetic_WidthOneAlsoInTheRecord) {
  const ImportPatch patch("ExtCreatePen", WatchExtCreatePen);
  Page page;
  page.Play(REC_CREATEBRUSH,
            PayloadOf(uint32_t{BS_HATCHED}, 0x99u, uint32_t{HS_CROSS}, 1u, 0u, uint8_t{0}));
  Payload pen = PayloadOf(uint32_t{PS_COSMETIC | PS_ALTERNATE}, 5u, 0u, 0u);
  EXPECT_EQ(DispatchRecord(page.context, REC_EXTCREATEPEN, pen), 1);
  EXPECT_EQ(LoadOrZero<uint32_t>(pen, 4), 1u);
  EXPECT_EQ(asked_pen.width, 1u);
  EXPECT_EQ(asked_pen.brush.lbStyle, static_cast<UINT>(BS_SOLID));
  EXPECT_EQ(asked_pen.brush.lbColor, 0x99u);
}

struct PenBrushCase {
  const char* name;
  Payload pen;
  UINT asked_style;  // of the brush that GDI gets
  UINT kept_style;   // of the stored brush afterwards
};

TEST(PenBrush, RestoreAfterThePen_Inverted) {
  const PenBrushCase kCases[] = {
      {"wide", WidePen(3), BS_HATCHED, 0xFFFFFFFF},
      {"one unit", WidePen(1), BS_SOLID, BS_SOLID},
      {"cosmetic", PayloadOf(uint32_t{PS_COSMETIC}, 3u, 0u, 0u), BS_SOLID, BS_SOLID},
  };
  const ImportPatch patch("ExtCreatePen", WatchExtCreatePen);
  for (const PenBrushCase& c : kCases) {
    SCOPED_TRACE(c.name);
    Page page;
    page.Play(REC_CREATEBRUSH,
              PayloadOf(uint32_t{BS_HATCHED}, 0x99u, uint32_t{HS_CROSS}, 1u, 0u, uint8_t{0}));
    EXPECT_EQ(page.Play(REC_EXTCREATEPEN, c.pen), 1);
    EXPECT_EQ(asked_pen.brush.lbStyle, c.asked_style);
    EXPECT_EQ(page.context.pen_brush.lbStyle, c.kept_style);
  }
}

TEST(PenBrush, PendingForEver_UsedByEveryLaterPen) {
  const ImportPatch patch("ExtCreatePen", WatchExtCreatePen);
  Page page;
  EXPECT_EQ(page.Play(REC_CREATEBRUSH, SolidBrush(0x123456, kPenBrush)), 1);
  EXPECT_EQ(page.context.pen_brush_pending, 1u);
  EXPECT_EQ(page.context.current_brush, nullptr);
  page.Play(REC_CREATEBRUSH, SolidBrush(0x00FF00, kFillBrush));
  EXPECT_EQ(page.context.pen_brush_pending, 1u);
  page.Play(REC_EXTCREATEPEN, WidePen(3));
  EXPECT_EQ(asked_pen.brush.lbColor, 0x123456u);
  page.Play(REC_EXTCREATEPEN, WidePen(3));
  EXPECT_EQ(asked_pen.brush.lbStyle, 0xFFFFFFFFu);
}

TEST(PenBrush, Pattern_OwnCopyOfTheBytes) {
  const ImportPatch patch("ExtCreatePen", WatchExtCreatePen);
  Page page;
  const Payload record = PatternBrush(kPenBrush);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(page.Play(REC_CREATEBRUSH, record), 1);
    const LOGBRUSH& brush = page.context.pen_brush;
    ASSERT_EQ(brush.lbStyle, static_cast<UINT>(BS_DIBPATTERNPT));
    EXPECT_EQ(brush.lbColor, static_cast<COLORREF>(DIB_RGB_COLORS));
    EXPECT_EQ(0, std::memcmp(reinterpret_cast<const void*>(brush.lbHatch),
                             record.data() + kBrushPatternOffset, record.size() - 21));
  }
}

TEST(PenBrush, NoMemoryForThePattern_PendingWithNone) {
  Page page(0x10000);
  const DibHeader header = HeaderOf(1000, 1000, 8);
  const uint32_t size = 40 + 1024 + 1000 * 1000;
  const auto record = [&](uint32_t usage) {
    return PayloadOf(uint32_t{BS_DIBPATTERNPT}, 0u, 0u, usage, size, header,
                     Payload(size - sizeof header), uint8_t{0});
  };
  EXPECT_EQ(page.Play(REC_CREATEBRUSH, record(kPenBrush)), 1);
  EXPECT_EQ(page.context.pen_brush_pending, 1u);
  EXPECT_EQ(page.context.pen_brush.lbHatch, 0u);
  EXPECT_EQ(page.Play(REC_EXTCREATEPEN, WidePen(3)), 1);
  EXPECT_EQ(page.context.current_pen, nullptr);
  EXPECT_EQ(page.Play(REC_CREATEBRUSH, record(kFillBrush)), 1);
  EXPECT_EQ(page.context.current_brush, nullptr);
}

TEST(Brush, PatternThatIsNoBitmap_NoBrush) {
  Page page;
  Payload record = PatternBrush(kFillBrush);
  Store(MutableBytes(record), 16, static_cast<uint32_t>(record.size()) - 19);
  EXPECT_EQ(page.Play(REC_CREATEBRUSH, record), 0);

  // A bitmap that did not pack leaves zeros; one byte less than its header tells is no pattern.
  const Payload zeros = PayloadOf(uint32_t{BS_DIBPATTERNPT}, 0u, 0u, 0u, 80u, Payload(81));
  EXPECT_EQ(page.Play(REC_CREATEBRUSH, zeros), 1);
  EXPECT_EQ(page.context.current_brush, nullptr);
  record = PatternBrush(kFillBrush);
  Store(MutableBytes(record), 16, static_cast<uint32_t>(record.size()) - 22);
  EXPECT_EQ(page.Play(REC_CREATEBRUSH, record), 1);
  EXPECT_EQ(page.context.current_brush, nullptr);
}

}  // namespace
}  // namespace quillo::test
