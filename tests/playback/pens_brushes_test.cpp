#include <gtest/gtest.h>

#include "capture/records/types.h"
#include "playback/page.h"
#include "playback/picture.h"
#include "support/canvas.h"
#include "support/holdings.h"
#include "support/watch.h"

namespace quillo::test {
namespace {

using namespace records;

Payload BrushRecord(uint32_t style, uint32_t colour, uint32_t hatch, uint32_t usage,
                    const Payload& pattern = {}) {
  return PayloadOf(style, colour, hatch, usage, static_cast<uint32_t>(pattern.size()), pattern,
                   uint8_t{0});
}
Payload PenRecord(uint32_t style, uint32_t width) { return PayloadOf(style, width, 0u, 0u); }

const Payload kPattern = Picture{.bit_count = 1, .width = 8, .height = 8}.Packed();
const Payload kHatchedPenBrush = BrushRecord(BS_HATCHED, 0x99, HS_CROSS, kPenBrush);

struct ObjectCase {
  uint32_t type;
  Payload payload;
  std::function<HGDIOBJ()> create;
};

constexpr LOGBRUSH kBlack = {};
constexpr DWORD kEntries[] = {5, 6};
const ObjectCase kObjectCases[] = {
    {REC_CREATEPEN, PayloadOf(uint32_t{PS_DASH}, 3, 0, 0x00FF00u),
     [] { return CreatePen(PS_DASH, 3, 0x00FF00); }},
    {REC_EXTCREATEPEN, PenRecord(PS_GEOMETRIC | PS_JOIN_MITER, 9),
     [] { return ExtCreatePen(PS_GEOMETRIC | PS_JOIN_MITER, 9, &kBlack, 0, nullptr); }},
    {REC_EXTCREATEPEN, PayloadOf(uint32_t{PS_GEOMETRIC | PS_USERSTYLE}, 2u, 2u, kEntries, 0u),
     [] { return ExtCreatePen(PS_GEOMETRIC | PS_USERSTYLE, 2, &kBlack, 2, kEntries); }},
    {REC_CREATEBRUSH, BrushRecord(BS_SOLID, 0x0000FF, 0, kFillBrush),
     [] { return CreateSolidBrush(0x0000FF); }},
    {REC_CREATEBRUSH, BrushRecord(BS_HATCHED, 0xFF0000, HS_CROSS, kFillBrush),
     [] { return CreateHatchBrush(HS_CROSS, 0xFF0000); }},
    {REC_CREATEBRUSH, BrushRecord(BS_DIBPATTERNPT, 0x112233, 0, kFillBrush, kPattern),
     [] { return CreateDIBPatternBrushPt(kPattern.data(), DIB_RGB_COLORS); }},
};

TEST(PensAndBrushes, EachKind_SelectedReplacedAndDeleted) {
  constexpr int kTimes = 20;
  for (const ObjectCase& c : kObjectCases) {
    Page page;
    const uintptr_t before = LiveGdiObjects();
    for (int i = 0; i < kTimes; ++i) EXPECT_EQ(page.Play(c.type, c.payload), 1);
    page.Play(REC_RESTOREDC);
    EXPECT_LE(LiveGdiObjects(), before + 2);
    EXPECT_EQ(page.Records(), RecordDirect([&](HDC dc) {
                for (int i = 0; i < kTimes; ++i) {
                  const HGDIOBJ object = c.create();
                  { const SelectScope selected(dc, object); }
                  DeleteObject(object);
                }
                RestoreDC(dc, -1);
              }));
  }
}

// What playback asks GDI for: this Wine's metafiles drop a pen's brush and dashes.
struct {
  DWORD style;
  DWORD width;
  LOGBRUSH brush;
  DWORD count;
  std::vector<DWORD> entries;
} asked;

HPEN NotePen(DWORD style, DWORD width, const LOGBRUSH* brush, DWORD count, const DWORD* entries) {
  asked = {style, width, *brush, count, {}};
  if (entries != nullptr) asked.entries.assign(entries, entries + count);
  return nullptr;
}

TEST(PensAndBrushes, FailedCreation_OldObjectGoneAndNoneCurrent) {
  Page page;
  for (const ObjectCase& c : kObjectCases) {
    for (const ObjectCase& old : kObjectCases) page.Play(old.type, old.payload);
    const WATCH(CreatePenIndirect) pen(nullptr);
    const WATCH(ExtCreatePen) extended_pen(nullptr);
    const WATCH(CreateBrushIndirect) brush(nullptr);
    EXPECT_EQ(page.Play(c.type, c.payload), 1);
    const bool is_brush = c.type == REC_CREATEBRUSH;
    EXPECT_EQ(page.context.current_pen == nullptr, !is_brush);
    EXPECT_EQ(page.context.previous_pen == nullptr, !is_brush);
    EXPECT_EQ(page.context.current_brush == nullptr, is_brush);
    EXPECT_EQ(page.context.previous_brush == nullptr, is_brush);
  }
}

TEST(ExtendedPen, StyleEntries_PassedOnWhereThereAreSoMany) {
  const WATCH(ExtCreatePen) watch(NotePen);
  Page page(/*heap_limit=*/0x10000);
  constexpr uint32_t kStyle = PS_GEOMETRIC | PS_USERSTYLE | PS_ENDCAP_FLAT;
  page.Play(REC_EXTCREATEPEN, PayloadOf(kStyle, 4u, 2u, kEntries, 0u));
  EXPECT_EQ(asked.style, kStyle);
  EXPECT_EQ(asked.width, 4u);
  EXPECT_EQ(asked.entries, (std::vector<DWORD>{5, 6}));
  EXPECT_EQ(asked.brush.lbStyle, static_cast<UINT>(BS_SOLID));

  // More entries than the job's heap holds: their count stays.
  constexpr uint32_t kMany = 1 << 20;
  EXPECT_EQ(page.Play(REC_EXTCREATEPEN, PayloadOf(kStyle, 4u, kMany, Payload(kMany * 4))), 1);
  EXPECT_EQ(asked.count, kMany);
  EXPECT_TRUE(asked.entries.empty());

  page.Play(REC_CREATEPEN, kObjectCases[0].payload);
  for (const uint32_t count : {2u, 0x40000000u, UINT32_MAX}) {
    EXPECT_EQ(page.Play(REC_EXTCREATEPEN, PayloadOf(kStyle, 2u, count, 0u)), 0);
  }
  EXPECT_NE(page.context.current_pen, nullptr);
}

TEST(PenBrush, EachPen_BrushForGdiAndInvertedRestore) {
  const struct {
    uint32_t style, width;
    UINT asked_style;  // of the brush that GDI gets
    UINT kept_style;   // of the stored brush afterwards
  } kCases[] = {
      {PS_GEOMETRIC, 3, BS_HATCHED, 0xFFFFFFFF},
      {PS_GEOMETRIC, 1, BS_SOLID, BS_SOLID},
      {PS_COSMETIC | PS_ALTERNATE, 5, BS_SOLID, BS_SOLID},
  };
  const WATCH(ExtCreatePen) watch(NotePen);
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.style);
    Page page;
    page.Play(REC_CREATEBRUSH, kHatchedPenBrush);
    EXPECT_EQ(page.Play(REC_EXTCREATEPEN, PenRecord(c.style, c.width)), 1);
    EXPECT_EQ(asked.brush.lbStyle, c.asked_style);
    EXPECT_EQ(asked.brush.lbColor, 0x99u);
    EXPECT_EQ(page.context.pen_brush.lbStyle, c.kept_style);
    EXPECT_EQ(asked.width, (c.style & PS_GEOMETRIC) != 0 ? c.width : 1);  // cosmetic: one unit
  }
}

TEST(PenBrush, PendingForEver) {
  const WATCH(ExtCreatePen) watch(NotePen);
  Page page;
  page.Play(REC_CREATEBRUSH, kHatchedPenBrush);
  EXPECT_EQ(page.context.current_brush, nullptr);
  page.Play(REC_CREATEBRUSH, BrushRecord(BS_SOLID, 0x00FF00, 0, kFillBrush));
  for (const UINT style : {UINT{BS_HATCHED}, UINT{0xFFFFFFFF}}) {
    page.Play(REC_EXTCREATEPEN, PenRecord(PS_GEOMETRIC, 3));
    EXPECT_EQ(asked.brush.lbColor, 0x99u);
    EXPECT_EQ(asked.brush.lbStyle, style);
  }
}

TEST(PatternBrush, CopyOfTheBytes_OrNoPatternAtAll) {
  const Payload kShort(kPattern.begin(), kPattern.end() - 1);
  const Payload kUnpacked(kPattern.size());  // zeros: no header
  const Payload kHuge = Picture{.bit_count = 8, .width = 1000, .height = 1000}.Packed();
  Page page(/*heap_limit=*/0x10000);
  for (int i = 0; i < 4000; ++i) {  // more copies than the heap holds
    const uint32_t usage = i % 2 == 0 ? kPenBrush : kFillBrush;
    page.Play(REC_CREATEBRUSH, BrushRecord(BS_DIBPATTERNPT, 0, 0, usage, kPattern));
  }
  for (const Payload* pattern : {&kPattern, &kPattern, &kShort, &kUnpacked, &kHuge}) {
    const bool good = pattern == &kPattern;
    EXPECT_EQ(
        page.Play(REC_CREATEBRUSH, BrushRecord(BS_DIBPATTERNPT, 0x99, 0, kPenBrush, *pattern)), 1);
    const LOGBRUSH& kept = page.context.pen_brush;
    EXPECT_EQ(kept.lbStyle, static_cast<UINT>(BS_DIBPATTERNPT));
    EXPECT_EQ(kept.lbColor, static_cast<COLORREF>(DIB_RGB_COLORS));
    ASSERT_EQ(kept.lbHatch != 0, good);
    const auto* copy = reinterpret_cast<const std::byte*>(kept.lbHatch);
    EXPECT_TRUE(!good || std::equal(kPattern.begin(), kPattern.end(), copy));
    EXPECT_EQ(page.Play(REC_CREATEBRUSH, BrushRecord(BS_DIBPATTERNPT, 0, 0, kFillBrush, *pattern)),
              1);
    EXPECT_EQ(page.context.current_brush != nullptr, good);
  }
  // More pattern than payload.
  Payload record = BrushRecord(BS_DIBPATTERNPT, 0, 0, kFillBrush, kPattern);
  Store(MutableBytes(record), 16, static_cast<uint32_t>(record.size()) - 19);
  EXPECT_EQ(page.Play(REC_CREATEBRUSH, record), 0);
}

TEST(PatternBrush, EveryDepth_PictureInFillsAndPens) {
  for (const uint16_t depth : {1, 4, 8, 16, 24, 32}) {
    const Picture picture{.bit_count = depth, .width = 8, .height = 8};
    Page page;
    page.Play(REC_CREATEBRUSH, BrushRecord(BS_DIBPATTERNPT, 0, 0, kFillBrush, picture.Packed()));
    page.Play(REC_FILLRECT, PayloadOf(0, 0, 8, 8));
    Canvas fill(8, 8);
    fill.Play(page.Close().Get());
    // This Wine's metafiles drop a pen's brush: this one draws on the canvas itself.
    const Canvas stroke(8, 8);
    page.context.page_dc = stroke.Dc();
    page.Play(REC_CREATEBRUSH, BrushRecord(BS_DIBPATTERNPT, 0, 0, kPenBrush, picture.Packed()));
    page.Play(REC_EXTCREATEPEN, PenRecord(PS_GEOMETRIC | PS_ENDCAP_FLAT, 8));
    page.Play(REC_MOVETO, PayloadOf(0, 4));
    page.Play(REC_LINETO, PayloadOf(8, 4));
    ReleaseDrawingObjects(page.context);
    for (int y = 0; y < 8; ++y) {
      for (int x = 0; x < 8; ++x) {
        ASSERT_EQ(fill.Pixel(x, y), picture.Colour(x, y)) << depth << ' ' << x << ' ' << y;
        ASSERT_EQ(stroke.Pixel(x, y), picture.Colour(x, y)) << depth << ' ' << x << ' ' << y;
      }
    }
  }
}

}  // namespace
}  // namespace quillo::test
