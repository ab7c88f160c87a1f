#include "base/ddi.h"

#include <algorithm>
#include <functional>

#include "capture/hooks.h"
#include "capture/records/framing.h"
#include "capture/writer.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/clips.h"
#include "host/engine/services/fonts.h"
#include "host/engine/services/paths.h"
#include "host/engine/services/strings.h"
#include "host/engine/services/surfaces.h"
#include "support/capture_fixture.h"
#include "support/record_dump.h"

namespace quillo {
namespace {

// The hooks that draw, on one set of arguments: a cosmetic line, a corner, a picture of one pixel.
class DrawingCallTest : public test::CaptureTest {
 protected:
  host::PathObject corner_{{{PD_BEGINSUBPATH, {{0, 0}, {160, 0}, {160, 160}}}}};
  host::PathObject nothing_{{}};
  host::PathObject malformed_{{{PD_BEGINSUBPATH | PD_BEZIERS, {{0, 0}, {16, 16}}}}};
  host::BrushObject brush_{0x112233};
  host::BrushObject fill_brush_{0x445566};
  LINEATTRS attributes_ = {};
  POINTL origin_ = {};
  RECTL rect_ = {0, 0, 1, 1};
  uint32_t pixel_ = 0;
  host::Surface source_{{1, 1}, BMF_32BPP, false, &pixel_, 4, 4};
  BLENDOBJ blend_ = {};
  host::FontObject font_{{}, {L"Family", L"", L""}, XFORML{1, 0, 0, 1, 0, 0}};
  host::StringObject text_{{{0, nullptr, {1, 2}}, {0, nullptr, {3, 4}}}, L"ab", 0, RECTL{}, 0};

  BOOL StrokePath(SURFOBJ* surface, PATHOBJ* path, CLIPOBJ* clip = nullptr) {
    return quillo::DrvStrokePath(surface, path, clip, nullptr, &brush_, &origin_, &attributes_,
                                 R2_WHITE);
  }
  BOOL FillPath(SURFOBJ* surface, PATHOBJ* path, CLIPOBJ* clip = nullptr) {
    return quillo::DrvFillPath(surface, path, clip, &fill_brush_, &origin_, R2_COPYPEN,
                               FP_WINDINGMODE);
  }
  BOOL StrokeAndFillPath(SURFOBJ* surface, PATHOBJ* path, CLIPOBJ* clip = nullptr) {
    return quillo::DrvStrokeAndFillPath(surface, path, clip, nullptr, &brush_, &attributes_,
                                        &fill_brush_, &origin_, R2_WHITE, FP_ALTERNATEMODE);
  }

  struct Call {
    const char* name;
    std::function<BOOL(SURFOBJ*)> draw;
  };
  // clang-format off
  const Call calls_[9] = {
      {"DrvStrokePath", [this](SURFOBJ* s) { return StrokePath(s, &corner_); }},
      {"DrvFillPath", [this](SURFOBJ* s) { return FillPath(s, &corner_); }},
      {"DrvStrokeAndFillPath", [this](SURFOBJ* s) { return StrokeAndFillPath(s, &corner_); }},
      {"DrvBitBlt", [this](SURFOBJ* s) {
         return quillo::DrvBitBlt(s, &source_, nullptr, nullptr, nullptr, &rect_, &origin_, nullptr,
                                  nullptr, nullptr, 0xCCCC); }},
      {"DrvPaint", [this](SURFOBJ* s) {
         return quillo::DrvPaint(s, nullptr, &brush_, &origin_, R2_COPYPEN); }},
      {"DrvStretchBlt", [this](SURFOBJ* s) {
         return quillo::DrvStretchBlt(s, &source_, nullptr, nullptr, nullptr, nullptr, nullptr,
                                      &rect_, &rect_, nullptr, COLORONCOLOR); }},
      {"DrvCopyBits", [this](SURFOBJ* s) {
         return quillo::DrvCopyBits(s, &source_, nullptr, nullptr, &rect_, &origin_); }},
      {"DrvAlphaBlend", [this](SURFOBJ* s) {
         return quillo::DrvAlphaBlend(s, &source_, nullptr, nullptr, &rect_, &rect_, &blend_); }},
      {"DrvTextOut", [this](SURFOBJ* s) {
         return quillo::DrvTextOut(s, &text_, &font_, nullptr, nullptr, nullptr, &brush_, nullptr,
                                   nullptr, R2_COPYPEN); }},
  };
  // clang-format on
};

const std::string kPen = "CREATEBRUSH 0 0x332211 0 1 0 [00]\nCREATEPEN 0 0 0 0x332211\n";
const std::string kClip = "BEGINPATH\nRECTANGLE -1 -1 6 6\nENDPATH\nSELECTCLIPPATH\n";
const std::string kCorner =
    "BEGINPATH\nSETBKCOLOR 0xffffff\nMOVETO 0 0\nLINETO 10 0\nLINETO 10 10\nENDPATH\n";
const std::string kFillBrush = "CREATEBRUSH 0 0x665544 0 0 0 [00]\nSETBRUSHORG 0 0\n";

TEST_F(DrawingCallTest, StrokePath_RecordsInOrder) {
  host::ClipObject clip(DC_RECT, {0, 0, 5, 5});
  EXPECT_TRUE(StrokePath(&surface_, &corner_, &clip));
  EXPECT_EQ(TakeDrawing(), kPen + "SETROP2 0\n" + kClip + kCorner + "STROKEPATH\n");
  EXPECT_EQ(device_.remembered_colour, 0x112233u);

  host::ClipObject holding(DC_RECT, {0, 0, 10, 10});
  brush_.iSolidColor = 0xFFFFFFFF;
  EXPECT_TRUE(quillo::DrvStrokePath(&surface_, &corner_, &holding, nullptr, &brush_, nullptr,
                                    nullptr, R2_COPYPEN));
  EXPECT_TRUE(TakeDrawing().starts_with("SETROP2 13\nBEGINPATH\nSETBKCOLOR 0x332211\n"));
  EXPECT_EQ(device_.remembered_colour, 0x332211u);
}

TEST_F(DrawingCallTest, Fills_RecordInOrder) {
  const std::string fill = "SETPOLYFILLMODE 2\n" + kFillBrush + "SETROP2 13\nFILLPATH\n";
  host::ClipObject clip(DC_RECT, {0, 0, 5, 5});
  EXPECT_TRUE(FillPath(&surface_, &corner_, &clip));
  EXPECT_EQ(TakeDrawing(), kClip + kCorner + fill);
  // Unlike a stroke, a fill of nothing is recorded.
  EXPECT_TRUE(FillPath(&surface_, &nothing_));
  EXPECT_EQ(TakeDrawing(), fill);
  EXPECT_TRUE(StrokePath(&surface_, &nothing_));
  EXPECT_EQ(TakeDrawing(), kPen + "SETROP2 0\n");
  device_.remembered_colour = 0xFFFFFF;
  EXPECT_TRUE(StrokeAndFillPath(&surface_, &corner_, &clip));
  EXPECT_EQ(TakeDrawing(), kPen + "SETROP2 0\n" + kClip + kCorner + "SETPOLYFILLMODE 1\n" +
                               kFillBrush + "SETROP2 0\nSTROKEANDFILLPATH\n");
  EXPECT_EQ(device_.remembered_colour, 0x112233u);
}

TEST_F(DrawingCallTest, PathFailures_CloseTheBracketAndKeepTheColour) {
  const auto fails = [this](BOOL result, DWORD last_error) {
    EXPECT_FALSE(result);
    EXPECT_EQ(GetLastError(), last_error);
    const std::string records = TakeDrawing();
    EXPECT_EQ(records.find("ENDPATH"), std::string::npos);
    EXPECT_EQ(records.find("FILLPATH"), std::string::npos);
    EXPECT_EQ(device_.remembered_colour, 0u);
    SetLastError(0);
  };
  device_.remembered_colour = 0;
  SetLastError(0);
  fails(StrokePath(&surface_, nullptr), 0);
  for (PATHOBJ* path : {static_cast<PATHOBJ*>(nullptr), static_cast<PATHOBJ*>(&malformed_)}) {
    fails(FillPath(&surface_, path), ERROR_INVALID_PARAMETER);
    fails(StrokeAndFillPath(&surface_, path), ERROR_INVALID_PARAMETER);
  }
  fails(StrokePath(&surface_, &malformed_), ERROR_INVALID_PARAMETER);
}

TEST_F(DrawingCallTest, DeviceState_DecidesWhetherACallIsRecorded) {
  DEVICE_PDEV foreign = device_;
  foreign.closing_signature = 0;
  SURFOBJ foreign_surface = surface_;
  foreign_surface.dhpdev = reinterpret_cast<DHPDEV>(&foreign);
  for (const Call& call : calls_) {
    SCOPED_TRACE(call.name);
    for (SURFOBJ* surface : {static_cast<SURFOBJ*>(nullptr), &foreign_surface}) {
      SetLastError(0);
      EXPECT_FALSE(call.draw(surface));
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    }
    for (const uint32_t flags : {kDrawingRefused | 0u, kDrawingRefused | kDrawingDiscarded}) {
      device_.flags = flags;
      EXPECT_FALSE(call.draw(&surface_));
    }
    device_.flags = kDrawingDiscarded;
    EXPECT_TRUE(call.draw(&surface_));
    EXPECT_EQ(TakeRecords(), "");
    device_.flags = kDocumentOpen;
    EXPECT_TRUE(call.draw(&surface_));
    TakeDrawing();
  }
  device_.job = nullptr;
  for (const Call& call : calls_) EXPECT_TRUE(call.draw(&surface_)) << call.name;
  EXPECT_FALSE(quillo::DrvLineTo(&surface_, nullptr, &brush_, 0, 0, 1, 1, &rect_, R2_COPYPEN));
}

// Without memory single records are missing; the call succeeds and the stream stays well formed.
TEST_F(DrawingCallTest, EveryFailingAllocation_DropsOneRecord) {
  const auto record_count = [](const std::string& text) { return std::ranges::count(text, '\n'); };
  for (const Call& call : calls_) {
    SCOPED_TRACE(call.name);
    device_.remembered_colour = 0xFFFFFF;
    EXPECT_TRUE(call.draw(&surface_));
    const std::string whole = TakeDrawing();
    for (int granted = 0;; ++granted) {
      ASSERT_LT(granted, 20);
      device_.remembered_colour = 0xFFFFFF;
      const test::FailingAllocation failure(granted);
      EXPECT_TRUE(call.draw(&surface_));
      const std::string records = TakeDrawing();
      EXPECT_EQ(records.find("incomplete"), std::string::npos);
      if (records == whole) break;
      EXPECT_EQ(record_count(records) + 1, record_count(whole));
    }
    const test::FailingAllocation none(0, /*rest=*/true);
    EXPECT_TRUE(call.draw(&surface_));
    TakeDrawing();
  }
}

// A record through both writers and the sink, and back.
TEST_F(DrawingCallTest, Records_FramedAndParsedBack) {
  using Shape = std::pair<uint32_t, uint32_t>;
  for (const auto& [type, size] : {Shape{records::REC_ESCAPEMARK, 0}, {records::REC_RAWDATA, 3}}) {
    std::vector<std::byte> stream(sizeof(records::RecordHeader) + size, std::byte{0x5A});
    Store(MutableBytes(stream), 0, records::RecordHeader{type, size});
    const void* payload = stream.data() + sizeof(records::RecordHeader);
    const std::string expected = test::DumpRecords(stream);

    EXPECT_EQ(EmitRecord(device_, type, payload, size), size != 0);
    EXPECT_EQ(TakeRecords(), expected);
    EXPECT_EQ(EmitRecordWhole(device_, type, payload, size), 1);
    EXPECT_EQ(TakeRecords(), expected);
    const test::FailingAllocation failure(0);
    EXPECT_EQ(EmitRecordWhole(device_, type, payload, size), 0);
    EXPECT_EQ(TakeRecords(), "");
  }
}

}  // namespace
}  // namespace quillo
