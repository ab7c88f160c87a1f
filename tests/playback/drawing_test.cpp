#include <gtest/gtest.h>

#include "capture/records/types.h"
#include "playback/page.h"
#include "support/watch.h"

namespace quillo::test {
namespace {

using namespace records;

constexpr POINT kCurve[] = {{10, 20}, {30, -40}, {50, 60}, {70, 80}};
const Payload kCurvePoints = PayloadOf(uint32_t{4}, kCurve, 0);

constexpr XFORM kTurned = {1.0f, 0.5f, -0.5f, 1.0f, 10.0f, 20.0f};

// Wine normalises some records, so what playback writes is compared with what the same calls write.
const struct {
  uint32_t type;
  Payload payload;
  void (*draw)(HDC);
} kDrawing[] = {
    // clang-format off
    {REC_SAVEDC, {}, [](HDC dc) { SaveDC(dc); }},
    {REC_BEGINPATH, Payload(5), [](HDC dc) { BeginPath(dc); }},
    {REC_MOVETO, PayloadOf(1, 2), [](HDC dc) { MoveToEx(dc, 1, 2, nullptr); }},
    {REC_LINETO, PayloadOf(-3, 400), [](HDC dc) { LineTo(dc, -3, 400); }},
    {REC_CLOSEFIGURE, {}, [](HDC dc) { CloseFigure(dc); }},
    {REC_ENDPATH, {}, [](HDC dc) { EndPath(dc); }},
    {REC_STROKEPATH, {}, [](HDC dc) { StrokePath(dc); }},
    {REC_FILLPATH, {}, [](HDC dc) { FillPath(dc); }},
    {REC_STROKEANDFILLPATH, {}, [](HDC dc) { StrokeAndFillPath(dc); }},
    {REC_SELECTCLIPPATH, {}, [](HDC dc) { SelectClipPath(dc, RGN_COPY); }},
    {REC_RECTANGLE, PayloadOf(10, 20, 30, 40), [](HDC dc) { Rectangle(dc, 10, 20, 30, 40); }},
    {REC_ELLIPSE, PayloadOf(50, 40, 30, 20), [](HDC dc) { Ellipse(dc, 50, 40, 30, 20); }},
    {REC_POLYBEZIER, kCurvePoints, [](HDC dc) { PolyBezier(dc, kCurve, 4); }},
    {REC_POLYBEZIERTO, PayloadOf(uint32_t{3}, kCurve), [](HDC dc) { PolyBezierTo(dc, kCurve, 3); }},
    {REC_POLYLINE, kCurvePoints, [](HDC dc) { Polyline(dc, kCurve, 4); }},
    {REC_POLYLINETO, kCurvePoints, [](HDC dc) { PolylineTo(dc, kCurve, 4); }},
    {REC_SETBKCOLOR, PayloadOf(0x123456u), [](HDC dc) { SetBkColor(dc, 0x123456); }},
    {REC_SETBKMODE, PayloadOf(TRANSPARENT), [](HDC dc) { SetBkMode(dc, TRANSPARENT); }},
    {REC_SETPOLYFILLMODE, PayloadOf(WINDING), [](HDC dc) { SetPolyFillMode(dc, WINDING); }},
    {REC_SETROP2, PayloadOf(R2_XORPEN), [](HDC dc) { SetROP2(dc, R2_XORPEN); }},
    {REC_PATBLT, PayloadOf(10, 20, 5, 50, uint32_t{PATINVERT}),
     [](HDC dc) { PatBlt(dc, 10, 20, -5, 30, PATINVERT); }},
    {REC_SETWORLDTRANSFORM, PayloadOf(kTurned),
     [](HDC dc) { SetGraphicsMode(dc, GM_ADVANCED); SetWorldTransform(dc, &kTurned); }},
    {REC_RESETWORLDTRANSFORM, {}, [](HDC dc) {
       ModifyWorldTransform(dc, nullptr, MWT_IDENTITY); SetGraphicsMode(dc, GM_COMPATIBLE); }},
    {REC_RESTOREDC, {}, [](HDC dc) { RestoreDC(dc, -1); }},
    {REC_RESTOREDC, {}, [](HDC dc) { RestoreDC(dc, -1); }},
    // clang-format on
};

TEST(Drawing, EachRecord_SameMetafileAsTheCallsThemselves) {
  Page page;
  for (const auto& step : kDrawing) EXPECT_EQ(page.Play(step.type, step.payload), 1) << step.type;
  // The DC's transform is gone, playback's copy of it stays.
  EXPECT_EQ(PayloadOf(page.context.world_transform), PayloadOf(kTurned));
  EXPECT_EQ(GetGraphicsMode(page.context.page_dc), GM_COMPATIBLE);
  EXPECT_EQ(page.Records(), RecordDirect([](HDC dc) {
              for (const auto& step : kDrawing) step.draw(dc);
            }));
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

// Calls that this Wine's metafiles do not record, or whose null arguments do not show there.
TEST(Drawing, UnrecordedState_CallsMade) {
  const WATCH(SetMiterLimit) miter(TRUE);
  const WATCH(SetBrushOrgEx) origin(TRUE);
  const WATCH(FillRect) fill(0);
  Page page;
  const HDC dc = page.context.page_dc;
  EXPECT_EQ(page.Play(REC_SETMITERLIMIT, PayloadOf(2.5f)), 1);
  EXPECT_EQ(page.Play(REC_SETBRUSHORG, PayloadOf(-7, 8)), 1);
  EXPECT_EQ(page.Play(REC_FILLRECT, PayloadOf(0, 0, 1, 1)), 1);
  page.Play(REC_CREATEBRUSH, PayloadOf(0u, 0x0000FFu, 0u, 0u, 0u, uint8_t{0}));
  page.Play(REC_FILLRECT, PayloadOf(0, 0, 1, 1));
  EXPECT_EQ(miter.calls.at(0), std::make_tuple(dc, 2.5f, nullptr));
  EXPECT_EQ(origin.calls.at(0), std::make_tuple(dc, -7, 8, nullptr));
  EXPECT_EQ(std::get<HBRUSH>(fill.calls.at(0)), nullptr);
  EXPECT_EQ(std::get<HBRUSH>(fill.calls.at(1)), page.context.current_brush);
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
