#include <gtest/gtest.h>

#include "capture/records/types.h"
#include "playback/page.h"
#include "support/import_patch.h"

namespace quillo::test {
namespace {

using namespace records;

constexpr POINT kCurve[] = {{10, 20}, {30, -40}, {50, 60}, {70, 80}};
const Payload kCurvePoints = PayloadOf(uint32_t{4}, kCurve, 0);

struct DrawingCase {
  std::vector<std::pair<uint32_t, Payload>> records;
  std::function<void(HDC)> draw;
};

// Wine normalises some records, so what playback writes is compared with what the same calls write.
const DrawingCase kDrawingCases[] = {
    {{{REC_BEGINPATH, Payload(5)},
      {REC_MOVETO, PayloadOf(1, 2)},
      {REC_LINETO, PayloadOf(-3, 400)},
      {REC_CLOSEFIGURE, {}},
      {REC_ENDPATH, {}},
      {REC_STROKEPATH, {}}},
     [](HDC dc) {
       BeginPath(dc);
       MoveToEx(dc, 1, 2, nullptr);
       LineTo(dc, -3, 400);
       CloseFigure(dc);
       EndPath(dc);
       StrokePath(dc);
     }},
    {{{REC_BEGINPATH, {}},
      {REC_RECTANGLE, PayloadOf(10, 20, 30, 40)},
      {REC_ENDPATH, {}},
      {REC_FILLPATH, {}},
      {REC_BEGINPATH, {}},
      {REC_ELLIPSE, PayloadOf(50, 40, 30, 20)},
      {REC_ENDPATH, {}},
      {REC_STROKEANDFILLPATH, {}},
      {REC_BEGINPATH, {}},
      {REC_RECTANGLE, PayloadOf(1, 2, 3, 4)},
      {REC_ENDPATH, {}},
      {REC_SELECTCLIPPATH, {}}},
     [](HDC dc) {
       BeginPath(dc);
       Rectangle(dc, 10, 20, 30, 40);
       EndPath(dc);
       FillPath(dc);
       BeginPath(dc);
       Ellipse(dc, 50, 40, 30, 20);
       EndPath(dc);
       StrokeAndFillPath(dc);
       BeginPath(dc);
       Rectangle(dc, 1, 2, 3, 4);
       EndPath(dc);
       SelectClipPath(dc, RGN_COPY);
     }},
    {{{REC_POLYBEZIER, kCurvePoints},
      {REC_POLYBEZIERTO, PayloadOf(uint32_t{3}, kCurve)},
      {REC_POLYLINE, kCurvePoints},
      {REC_POLYLINETO, kCurvePoints}},
     [](HDC dc) {
       PolyBezier(dc, kCurve, 4);
       PolyBezierTo(dc, kCurve, 3);
       Polyline(dc, kCurve, 4);
       PolylineTo(dc, kCurve, 4);
     }},
    {{{REC_SETBKCOLOR, PayloadOf(0x123456u)},
      {REC_SETBKMODE, PayloadOf(TRANSPARENT)},
      {REC_SETPOLYFILLMODE, PayloadOf(WINDING)},
      {REC_SETROP2, PayloadOf(R2_XORPEN)},
      {REC_PATBLT, PayloadOf(10, 20, 5, 50, uint32_t{PATINVERT})}},
     [](HDC dc) {
       SetBkColor(dc, 0x123456);
       SetBkMode(dc, TRANSPARENT);
       SetPolyFillMode(dc, WINDING);
       SetROP2(dc, R2_XORPEN);
       PatBlt(dc, 10, 20, -5, 30, PATINVERT);
     }},
    {{{REC_SAVEDC, {}},
      {REC_SETWORLDTRANSFORM, PayloadOf(1.0f, 0.5f, -0.5f, 1.0f, 10.0f, 20.0f)},
      {REC_CREATEBRUSH, PayloadOf(0u, 0x0000FFu, 0u, 0u, 0u, uint8_t{0})},
      {REC_FILLRECT, PayloadOf(1, 2, 30, 40)},
      {REC_RESETWORLDTRANSFORM, {}},
      {REC_RESTOREDC, {}},
      {REC_RESTOREDC, {}}},
     [](HDC dc) {
       SaveDC(dc);
       const XFORM transform = {1.0f, 0.5f, -0.5f, 1.0f, 10.0f, 20.0f};
       SetGraphicsMode(dc, GM_ADVANCED);
       SetWorldTransform(dc, &transform);
       {
         const Brush red(CreateSolidBrush(0x0000FF));
         const SelectScope selected(dc, red.Get());
         const RECT rectangle = {1, 2, 30, 40};
         FillRect(dc, &rectangle, red.Get());
         ModifyWorldTransform(dc, nullptr, MWT_IDENTITY);
         SetGraphicsMode(dc, GM_COMPATIBLE);
       }
       RestoreDC(dc, -1);
       RestoreDC(dc, -1);
     }},
};

TEST(Drawing, EachRecord_SameMetafileAsTheCallsThemselves) {
  for (const DrawingCase& c : kDrawingCases) {
    Page page;
    for (const auto& [type, payload] : c.records) {
      EXPECT_EQ(page.Play(type, payload), 1) << std::hex << type;
    }
    const EmfRecords expected = RecordDirect(c.draw);
    EXPECT_GE(expected.size(), 4u);
    EXPECT_EQ(page.Records(), expected);
  }
}

TEST(Drawing, Points_AtAnyAddressButNoMoreThanThereAre) {
  Page page;
  for (const uint32_t type : {REC_POLYBEZIER, REC_POLYBEZIERTO, REC_POLYLINE, REC_POLYLINETO}) {
    for (const uint32_t count : {5u, 0x20000000u, 0x20000004u, UINT32_MAX}) {
      EXPECT_EQ(page.Play(type, PayloadOf(count, kCurve, 0)), 0);
    }
  }
  Payload block(kCurvePoints.size() + 8);
  for (size_t shift = 0; shift < 8; ++shift) {
    const MutableBytes payload = MutableBytes(block).subspan(shift, kCurvePoints.size());
    std::copy(kCurvePoints.begin(), kCurvePoints.end(), payload.begin());
    EXPECT_EQ(DispatchRecord(page.context, REC_POLYLINE, payload), 1);
  }
  EXPECT_EQ(page.Records(), RecordDirect([](HDC dc) {
              for (int i = 0; i < 8; ++i) Polyline(dc, kCurve, 4);
            }));
}

TEST(Drawing, WorldTransform_CopyOutlivesTheReset) {
  Page page;
  page.Play(REC_SETWORLDTRANSFORM, PayloadOf(2.0f, 0.0f, 0.0f, 3.0f, 4.0f, 5.0f));
  EXPECT_EQ(GetGraphicsMode(page.context.page_dc), GM_ADVANCED);
  page.Play(REC_RESETWORLDTRANSFORM);
  EXPECT_EQ(GetGraphicsMode(page.context.page_dc), GM_COMPATIBLE);
  EXPECT_EQ(page.context.world_transform.eM11, 2.0f);
  EXPECT_EQ(page.context.world_transform.eDy, 5.0f);
}

// Calls that this Wine's metafiles do not record, or whose null arguments do not show there.
struct {
  FLOAT miter_limit;
  POINT brush_origin;
  HBRUSH fill_brush;
} asked;

BOOL WINAPI WatchMiterLimit(HDC, FLOAT limit, FLOAT*) { return asked.miter_limit = limit, TRUE; }
BOOL WINAPI WatchBrushOrigin(HDC, int x, int y, POINT*) {
  return asked.brush_origin = {x, y}, TRUE;
}
int WINAPI WatchFillRect(HDC, const RECT*, HBRUSH brush) { return asked.fill_brush = brush, 0; }

TEST(Drawing, UnrecordedState_CallsMade) {
  const ImportPatch miter("SetMiterLimit", WatchMiterLimit);
  const ImportPatch origin("SetBrushOrgEx", WatchBrushOrigin);
  const ImportPatch fill("FillRect", WatchFillRect);
  asked = {0, {}, reinterpret_cast<HBRUSH>(1)};
  Page page;
  EXPECT_EQ(page.Play(REC_SETMITERLIMIT, PayloadOf(2.5f)), 1);
  EXPECT_EQ(page.Play(REC_SETBRUSHORG, PayloadOf(-7, 8)), 1);
  EXPECT_EQ(page.Play(REC_FILLRECT, PayloadOf(0, 0, 1, 1)), 1);
  EXPECT_EQ(asked.miter_limit, 2.5f);
  EXPECT_EQ(asked.brush_origin.x, -7);
  EXPECT_EQ(asked.brush_origin.y, 8);
  EXPECT_EQ(asked.fill_brush, nullptr);
}

// When this fails, metafiles have learnt to keep these, and the watching above can go.
TEST(Drawing, MiterLimitAndBrushOrigin_KnownGapOfTheEnvironment) {
  EXPECT_TRUE(RecordDirect([](HDC dc) {
                SetMiterLimit(dc, 2.5f, nullptr);
                SetBrushOrgEx(dc, 1, 2, nullptr);
              }).empty());
}

}  // namespace
}  // namespace quillo::test
