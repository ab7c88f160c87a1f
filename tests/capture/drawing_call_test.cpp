#include "base/ddi.h"

#include <algorithm>

#include "capture/hooks.h"
#include "capture/records/framing.h"
#include "capture/stage.h"
#include "capture/writer.h"
#include "host/engine/services/paths.h"
#include "support/capture_fixture.h"
#include "support/record_dump.h"

namespace quillo {
namespace {

/// The hooks that draw, with something to draw each.
class DrawingCallTest : public test::CaptureTest {
 protected:
  DrawingCallTest() {
    for (const char* line :
         {"brush 0x112233", "fill_brush 0x445566", "brush_origin 0 0", "pen 0",
          "path begin 0,0 10,0 10,10", "source BMF_32BPP 1 1 00000000", "target 0 0 1 1",
          "source_rect 0 0 1 1", "source_origin 0 0", "blend 0 0 0 0", "font 'Family'", "text 'ab'",
          "clip DC_COMPLEX 0 0 9 9 begin|close 1,2 9,2 5,8"}) {
      stage_.Set(line);
    }
  }

  test::Stage stage_{device_, surface_};
};

constexpr const char* kHooks[] = {"DrvStrokePath", "DrvFillPath",   "DrvStrokeAndFillPath",
                                  "DrvBitBlt",     "DrvPaint",      "DrvStretchBlt",
                                  "DrvCopyBits",   "DrvAlphaBlend", "DrvTextOut"};

TEST_F(DrawingCallTest, DeviceState_DecidesWhetherACallIsRecorded) {
  DEVICE_PDEV foreign = device_;
  foreign.closing_signature = 0;
  SURFOBJ foreign_surface = surface_;
  foreign_surface.dhpdev = reinterpret_cast<DHPDEV>(&foreign);
  for (const char* hook : kHooks) {
    SCOPED_TRACE(hook);
    EXPECT_EQ(stage_.Call(hook, nullptr), "FALSE 87");
    EXPECT_EQ(stage_.Call(hook, &foreign_surface), "FALSE 87");
    for (const uint32_t flags : {kDrawingRefused | 0u, kDrawingRefused | kDrawingDiscarded}) {
      device_.flags = flags;
      EXPECT_EQ(stage_.Call(hook), "FALSE 0");
    }
    device_.flags = kDrawingDiscarded;
    EXPECT_EQ(stage_.Call(hook), "TRUE");
    EXPECT_EQ(TakeRecords(), "");
    device_.flags = kDocumentOpen;
    EXPECT_EQ(stage_.Call(hook), "TRUE");
    TakeDrawing();
  }
  device_.job = nullptr;
  for (const char* hook : kHooks) EXPECT_EQ(stage_.Call(hook), "TRUE") << hook;
}

TEST_F(DrawingCallTest, ConstantAnswers) {
  EXPECT_FALSE(quillo::DrvLineTo(&surface_, nullptr, nullptr, 0, 0, 1, 1, nullptr, R2_COPYPEN));
  EXPECT_EQ(quillo::DrvDitherColor(nullptr, 0, 0x123456, nullptr), ULONG{DCR_SOLID});
  EXPECT_EQ(quillo::DrvGetGlyphMode(nullptr, nullptr), ULONG{FO_GLYPHBITS});
  EXPECT_EQ(TakeRecords(), "");
}

// Without memory single records are missing; the call succeeds, the stream stays well formed, and
// the outline of the clip is given back.
TEST_F(DrawingCallTest, EveryFailingAllocation_DropsOneRecord) {
  const auto record_count = [](const std::string& text) { return std::ranges::count(text, '\n'); };
  for (const char* hook : kHooks) {
    SCOPED_TRACE(hook);
    device_.remembered_colour = 0xFFFFFF;
    stage_.Call(hook);
    const std::string whole = TakeDrawing();
    for (int granted = 0;; ++granted) {
      ASSERT_LT(granted, 20);
      device_.remembered_colour = 0xFFFFFF;
      const test::FailingAllocation failure(granted);
      EXPECT_EQ(stage_.Call(hook), "TRUE");
      const std::string records = TakeDrawing();
      EXPECT_EQ(records.find("incomplete"), std::string::npos);
      if (records == whole) break;
      EXPECT_EQ(record_count(records) + 1, record_count(whole));
    }
    const test::FailingAllocation none(0, /*rest=*/true);
    EXPECT_EQ(stage_.Call(hook), "TRUE");
    TakeDrawing();
  }
  stage_.Set("clip DC_COMPLEX 0 0 9 9 begin|curve 1,2 9,2");  // malformed
  stage_.Call("DrvPaint");
  EXPECT_EQ(host::LivePathCount(), 0u);
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
