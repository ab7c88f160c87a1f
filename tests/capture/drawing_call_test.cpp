#include "base/ddi.h"

#include <functional>

#include "capture/hooks.h"
#include "capture/records/framing.h"
#include "capture/writer.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/clips.h"
#include "host/engine/services/paths.h"
#include "host/engine/services/surfaces.h"
#include "support/capture_fixture.h"
#include "support/record_dump.h"

namespace quillo {
namespace {

// Every hook that draws, on one set of arguments: a cosmetic line, a triangle, a small picture.
class DrawingCallTest : public test::CaptureTest {
 protected:
  struct Call {
    const char* name;
    std::function<BOOL(SURFOBJ*)> draw;
  };

  host::PathObject path_{{{PD_BEGINSUBPATH, {{0, 0}, {160, 0}, {160, 160}}}}};
  host::PathObject malformed_{{{PD_BEGINSUBPATH | PD_BEZIERS, {{0, 0}, {16, 16}}}}};
  host::BrushObject brush_{0x112233};
  host::BrushObject other_brush_{0x445566};
  LINEATTRS attributes_ = {};
  POINTL origin_ = {};
  RECTL rect_ = {0, 0, 1, 1};
  uint32_t pixel_ = 0;
  host::Surface source_{{1, 1}, BMF_32BPP, false, &pixel_, 4, 4};
  BLENDOBJ blend_ = {};

  std::vector<Call> Calls(PATHOBJ* path) {
    return {
        {"DrvStrokePath",
         [=, this](SURFOBJ* s) {
           return quillo::DrvStrokePath(s, path, nullptr, nullptr, &brush_, &origin_, &attributes_,
                                        R2_COPYPEN);
         }},
        {"DrvFillPath",
         [=, this](SURFOBJ* s) {
           return quillo::DrvFillPath(s, path, nullptr, &brush_, &origin_, R2_COPYPEN,
                                      FP_WINDINGMODE);
         }},
        {"DrvStrokeAndFillPath",
         [=, this](SURFOBJ* s) {
           return quillo::DrvStrokeAndFillPath(s, path, nullptr, nullptr, &brush_, &attributes_,
                                               &other_brush_, &origin_, R2_WHITE, FP_ALTERNATEMODE);
         }},
        {"DrvBitBlt",
         [=, this](SURFOBJ* s) {
           return quillo::DrvBitBlt(s, &source_, nullptr, nullptr, nullptr, &rect_, &origin_,
                                    nullptr, nullptr, nullptr, 0xCCCC);
         }},
        {"DrvPaint",
         [=, this](SURFOBJ* s) {
           return quillo::DrvPaint(s, nullptr, &brush_, &origin_, R2_COPYPEN);
         }},
        {"DrvStretchBlt",
         [=, this](SURFOBJ* s) {
           return quillo::DrvStretchBlt(s, &source_, nullptr, nullptr, nullptr, nullptr, nullptr,
                                        &rect_, &rect_, nullptr, COLORONCOLOR);
         }},
        {"DrvCopyBits",
         [=, this](SURFOBJ* s) {
           return quillo::DrvCopyBits(s, &source_, nullptr, nullptr, &rect_, &origin_);
         }},
        {"DrvAlphaBlend",
         [=, this](SURFOBJ* s) {
           return quillo::DrvAlphaBlend(s, &source_, nullptr, nullptr, &rect_, &rect_, &blend_);
         }},
    };
  }
};

const std::string kTriangle =
    "REC_BEGINPATH\nREC_SETBKCOLOR 0xffffff\nREC_MOVETO 0 0\nREC_LINETO 10 0\nREC_LINETO 10 10\n"
    "REC_ENDPATH\n";
const std::string kPen = "REC_CREATEBRUSH 0 0x332211 0 1 0 [00]\nREC_CREATEPEN 0 0 0 0x332211\n";

TEST_F(DrawingCallTest, StrokePath_RecordsInOrder) {
  host::ClipObject clip(DC_RECT, {0, 0, 5, 5});
  EXPECT_TRUE(quillo::DrvStrokePath(&surface_, &path_, &clip, nullptr, &brush_, nullptr,
                                    &attributes_, R2_WHITE));
  EXPECT_EQ(TakeDrawing(), kPen +
                               "REC_SETROP2 0\nREC_BEGINPATH\nREC_RECTANGLE -1 -1 6 6\nREC_ENDPATH"
                               "\nREC_SELECTCLIPPATH\n" +
                               kTriangle + "REC_STROKEPATH\n");
  EXPECT_EQ(device_.remembered_colour, 0x112233u);

  host::ClipObject holding(DC_RECT, {0, 0, 10, 10});
  host::PathObject nothing({});
  brush_.iSolidColor = 0xFFFFFFFF;
  EXPECT_TRUE(quillo::DrvStrokePath(&surface_, &nothing, &holding, nullptr, &brush_, nullptr,
                                    nullptr, R2_COPYPEN));
  EXPECT_EQ(TakeDrawing(), "REC_SETROP2 13\n");
  EXPECT_EQ(device_.remembered_colour, 0x112233u);
}

TEST_F(DrawingCallTest, FillPath_RecordsInOrder) {
  const std::string fill =
      "REC_SETPOLYFILLMODE 2\nREC_CREATEBRUSH 0 0x332211 0 0 0 [00]\nREC_SETBRUSHORG 0 0\n"
      "REC_SETROP2 13\nREC_FILLPATH\n";
  EXPECT_TRUE(Calls(&path_)[1].draw(&surface_));
  EXPECT_EQ(TakeDrawing(), kTriangle + fill);
  // The fill stands there even where nothing was drawn.
  host::PathObject nothing({});
  EXPECT_TRUE(Calls(&nothing)[1].draw(&surface_));
  EXPECT_EQ(TakeDrawing(), fill);
}

TEST_F(DrawingCallTest, StrokeAndFillPath_RecordsInOrder) {
  EXPECT_TRUE(Calls(&path_)[2].draw(&surface_));
  EXPECT_EQ(TakeDrawing(), kPen + "REC_SETROP2 0\n" + kTriangle +
                               "REC_SETPOLYFILLMODE 1\nREC_CREATEBRUSH 0 0x665544 0 0 0 [00]\n"
                               "REC_SETBRUSHORG 0 0\nREC_SETROP2 0\nREC_STROKEANDFILLPATH\n");
  EXPECT_EQ(device_.remembered_colour, 0x112233u);
}

TEST_F(DrawingCallTest, PathFailures_CloseTheBracketAndChangeNoColour) {
  for (PATHOBJ* path : {static_cast<PATHOBJ*>(nullptr), static_cast<PATHOBJ*>(&malformed_)}) {
    for (const size_t hook : {0u, 1u, 2u}) {
      const Call call = Calls(path)[hook];
      SetLastError(0);
      device_.remembered_colour = 0;
      EXPECT_FALSE(call.draw(&surface_)) << call.name;
      const bool named = path != nullptr || hook != 0;
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(named ? ERROR_INVALID_PARAMETER : 0));
      const std::string records = TakeDrawing();
      EXPECT_EQ(records.find("REC_ENDPATH"), std::string::npos) << records;
      EXPECT_EQ(device_.remembered_colour, 0u);
    }
  }
}

TEST_F(DrawingCallTest, DeviceState_DecidesWhetherACallIsRecorded) {
  DEVICE_PDEV foreign = device_;
  foreign.closing_signature = 0;
  SURFOBJ foreign_surface = surface_;
  foreign_surface.dhpdev = reinterpret_cast<DHPDEV>(&foreign);
  for (const Call& call : Calls(&path_)) {
    EXPECT_FALSE(call.draw(nullptr)) << call.name;
    EXPECT_FALSE(call.draw(&foreign_surface)) << call.name;
    device_.flags = kDrawingRefused;
    EXPECT_FALSE(call.draw(&surface_)) << call.name;
    device_.flags = kDrawingRefused | kDrawingDiscarded;
    EXPECT_FALSE(call.draw(&surface_)) << call.name;
    device_.flags = kDrawingDiscarded;
    EXPECT_TRUE(call.draw(&surface_)) << call.name;
    EXPECT_EQ(TakeRecords(), "") << call.name;
    device_.flags = kDocumentOpen;
    EXPECT_TRUE(call.draw(&surface_)) << call.name;
    TakeDrawing();
  }
}

TEST_F(DrawingCallTest, NoJob_NothingHappens) {
  device_.job = nullptr;
  for (const Call& call : Calls(&path_)) EXPECT_TRUE(call.draw(&surface_)) << call.name;
  EXPECT_EQ(TakeRecords(), "");
}

TEST_F(DrawingCallTest, LineTo_NeverRecords) {
  EXPECT_FALSE(quillo::DrvLineTo(&surface_, nullptr, &brush_, 0, 0, 1, 1, &rect_, R2_COPYPEN));
  EXPECT_EQ(TakeRecords(), "");
}

// Without memory single records are missing; the calls succeed and the stream stays well formed.
TEST_F(DrawingCallTest, ScarceMemory_DropsRecordsAndNothingElse) {
  for (const Call& call : Calls(&path_)) {
    EXPECT_TRUE(call.draw(&surface_));
    const std::string whole = TakeDrawing();
    for (int granted = 0;; ++granted) {
      device_.remembered_colour = 0xFFFFFF;
      {
        const test::ScarceProcessHeap scarce(granted);
        EXPECT_TRUE(call.draw(&surface_)) << call.name;
      }
      const std::string records = TakeDrawing();
      EXPECT_EQ(records.find("incomplete"), std::string::npos) << call.name;
      if (granted == 0 && std::string_view(call.name) != "DrvStretchBlt") {
        EXPECT_EQ(records.find(' '), std::string::npos) << records;  // no record with a payload
      }
      if (records == whole) break;
      ASSERT_LT(granted, 20) << call.name;
    }
    device_.remembered_colour = 0xFFFFFF;
  }
}

// Each type through both writers and the sink, and back.
TEST_F(DrawingCallTest, EveryRecordType_FramedAndParsedBack) {
  std::vector<std::pair<uint32_t, uint32_t>> types = {{records::REC_ESCAPEMARK, 0},
                                                      {records::REC_RAWDATA, 3}};
  for (const auto& info : records::kRecordInfos) types.emplace_back(info.type, info.payload_size);
  for (const auto& [type, size] : types) {
    std::vector<std::byte> stream(sizeof(records::RecordHeader) + size, std::byte{0x5A});
    Store(MutableBytes(stream), 0, records::RecordHeader{type, size});
    const void* payload = stream.data() + sizeof(records::RecordHeader);
    const std::string expected = test::DumpRecords(stream);

    EXPECT_EQ(EmitRecord(device_, type, payload, size), size != 0);
    EXPECT_EQ(TakeRecords(), expected);
    EXPECT_EQ(EmitRecordWhole(device_, type, payload, size), 1);
    EXPECT_EQ(TakeRecords(), expected);
    const test::ScarceProcessHeap scarce(0);
    EXPECT_EQ(EmitRecordWhole(device_, type, payload, size), 0);
    for (size_t cut = 0; cut < stream.size(); ++cut) {
      EXPECT_FALSE(records::NextFrame(MutableBytes(stream).first(cut)));
    }
  }
  EXPECT_EQ(TakeRecords(), "");
}

}  // namespace
}  // namespace quillo
