#include "base/ddi.h"

#include <algorithm>
#include <array>

#include "capture/brush.h"
#include "capture/builders.h"
#include "capture/hooks.h"
#include "capture/packed_surface.h"
#include "capture/pen.h"
#include "capture/records/framing.h"
#include "capture/stage.h"
#include "capture/writer.h"
#include "driver/callbacks.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/guard.h"
#include "host/engine/services/paths.h"
#include "host/engine/services/surfaces.h"
#include "support/capture_fixture.h"
#include "support/case_table.h"
#include "support/holdings.h"
#include "support/line.h"
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

// What scripts cannot state: sizes at their limits, failing memory, and what calls leave in the
// objects that they were given.
using CaptureLimits = test::CaptureTest;

TEST_F(CaptureLimits, PenStyles_AsManyEntriesAsARecordHolds) {
  std::vector<FLOAT_LONG> entries(5000);
  LINEATTRS pen = {};
  pen.pstyle = entries.data();
  const auto record = [&](FLONG flags, ULONG count) {
    pen.fl = flags;
    pen.cstyle = count;
    WritePen(device_, &pen, nullptr, nullptr);
    return TakeRecords();
  };
  std::string many = " 5000";
  for (size_t i = 0; i < entries.size() + 1; ++i) many += " 0";
  EXPECT_EQ(record(LA_GEOMETRIC, 5000), "SETMITERLIMIT 1\nEXTCREATEPEN 0x10007 0" + many + "\n");
  EXPECT_EQ(record(0, 5000), "EXTCREATEPEN 0x7 0" + many + "\n");
  for (const ULONG count : {0x3FFFFFFCu, 0x40000001u, 0xFFFFFFFFu}) {
    EXPECT_EQ(record(LA_GEOMETRIC, count), "SETMITERLIMIT 1\nEXTCREATEPEN 0x10000 0 0 0\n");
    EXPECT_EQ(record(0, count), "");
  }
  {
    // Without memory for the entries the pen is solid.
    const test::FailingAllocation entries_fail(1);
    EXPECT_EQ(record(LA_GEOMETRIC, 2), "SETMITERLIMIT 1\nEXTCREATEPEN 0x10000 0 0 0\n");
  }
  pen.pstyle = nullptr;
  EXPECT_EQ(record(0, 0xFFFFFFFF), "CREATEPEN 0 0 0 0x0\n");
}

TEST_F(CaptureLimits, RealizeBrush_SizeAndFailures) {
  uint32_t row = 0;
  host::Surface pattern({2, 1}, BMF_8BPP, false, &row, sizeof row, 4);
  host::BrushObject brush((host::BrushObject::Pattern()));
  SURFOBJ stray = {};
  SetLastError(0);
  EXPECT_FALSE(quillo::DrvRealizeBrush(&brush, &stray, nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_FALSE(quillo::DrvRealizeBrush(nullptr, &surface_, nullptr, nullptr, nullptr, 0));
  host::FailNextCall("BRUSHOBJ_pvAllocRbrush");
  EXPECT_FALSE(quillo::DrvRealizeBrush(&brush, &surface_, nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(brush.pvRbrush, nullptr);
  EXPECT_TRUE(quillo::DrvRealizeBrush(&brush, &surface_, &pattern, nullptr, nullptr, HS_DDI_MAX));
  EXPECT_EQ(static_cast<const RealisedBrush*>(brush.pvRbrush)->total_size, 24u + 1068);
}

TEST_F(CaptureLimits, CopyBits_FromTheDevice_ErasesTheTarget) {
  std::array<uint8_t, 24> bits = {};
  host::Surface picture({3, 2}, BMF_24BPP, false, bits.data(), 24, 12);
  SURFOBJ device_source = {};
  device_source.iType = STYPE_DEVICE;
  RECTL rect = {0, 0, 2, 1};
  POINTL origin = {};
  EXPECT_TRUE(quillo::DrvCopyBits(&picture, &device_source, nullptr, nullptr, &rect, &origin));
  // The upper row is the second one in memory.
  for (size_t i = 0; i < bits.size(); ++i) EXPECT_EQ(bits[i], i >= 12 && i < 18 ? 0xFF : 0) << i;
  EXPECT_EQ(TakeRecords(), "");
}

TEST_F(CaptureLimits, SurfaceToPackedBitmap_SizesAndRefusals) {
  std::array<std::byte, 68> packed = {};
  uint32_t bits[6] = {};
  host::Surface picture({3, 2}, BMF_24BPP, false, bits, 24, 12);
  uint32_t size = 0;
  EXPECT_TRUE(SurfaceToPackedBitmap(nullptr, &picture, nullptr, nullptr, size));
  EXPECT_EQ(size, packed.size());
  EXPECT_TRUE(SurfaceToPackedBitmap(nullptr, &picture, nullptr, packed.data(), size));
  EXPECT_EQ(LoadOrZero<int32_t>(packed, 24), 6000);
  size = 67;
  EXPECT_FALSE(SurfaceToPackedBitmap(nullptr, &picture, nullptr, packed.data(), size));
  picture.pvBits = nullptr;
  EXPECT_FALSE(SurfaceToPackedBitmap(nullptr, &picture, nullptr, nullptr, size));
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(PackedBitmapSize(&picture), 68u);
}

TEST_F(CaptureLimits, PackedBitmapSize_NoMoreThanTheBitsAccountFor) {
  std::vector<uint32_t> bits(500'000);
  test::CheckCases("capture/records/packed_sizes.txt", [&](const auto& fields) {
    SIZEL size = {};
    ULONG format = 0, bytes = 0;
    LONG delta = 0;
    bool has_bits = false;
    test::Scan(fields[0], size.cx, size.cy, format, has_bits, delta, bytes);
    host::Surface picture({1, 1}, format, delta != 0, bits.data(), bytes, delta);
    picture.sizlBitmap = size;
    picture.lDelta = delta;
    if (!has_bits) picture.pvBits = nullptr;
    return std::to_string(PackedBitmapSize(&picture));
  });
}

TEST_F(CaptureLimits, LargeSourceWithoutBits_IsZerosWhereAPictureWas) {
  std::vector<BYTE> bits(300 * 900, BYTE{0x5A});
  host::Surface source({300, 300}, BMF_24BPP, true, bits.data(), 300 * 900, 900);
  const auto holds_picture = [&] {
    RECTL to = {0, 0, 300, 300};
    POINTL origin = {};
    EXPECT_TRUE(quillo::DrvBitBlt(&surface_, &source, nullptr, nullptr, nullptr, &to, &origin,
                                  nullptr, nullptr, nullptr, 0xCCCC));
    const std::string records = TakeRecords();
    EXPECT_NE(records.find("BITBLT"), std::string::npos);
    return records.find("5a5a") != std::string::npos;
  };
  EXPECT_TRUE(holds_picture());
  source.pvBits = nullptr;
  EXPECT_FALSE(holds_picture());
}

TEST(PayloadBlock, TheLastLargeOne_IsUsedAgainForTheSameSize) {
  DropSparePayload();
  const size_t before = test::Holdings::Now().heap_bytes;
  const auto make = [before](uint32_t size) {
    const PayloadBlock block(size);
    const MutableBytes content = block.Content();
    const bool zero = std::ranges::count(content, std::byte{0}) == static_cast<ptrdiff_t>(size);
    std::ranges::fill(content, std::byte{1});
    return test::Line(content.size(), zero ? "" : " not zero", " kept ",
                      (test::Holdings::Now().heap_bytes - before) / 100'000);
  };
  constexpr uint32_t kLarge = 800'000;
  for (const auto& [size, outcome] : std::initializer_list<std::pair<uint32_t, std::string>>{
           {200'000, "200000 kept 2"},     // small ones are freed
           {kLarge, "800000 kept 8"},      //
           {kLarge / 2, "400000 kept 8"},  // in the one that is kept
           {kLarge + 1, "800001 kept 8"},  //
           {kLarge / 2 - 1, "399999 kept 3"}}) {
    EXPECT_EQ(make(size), outcome);
  }
  EXPECT_LT(test::Holdings::Now().heap_bytes, before + 410'000);
  make(40 << 20);
  EXPECT_LT(test::Holdings::Now().heap_bytes, before + 1000);
  make(kLarge);
  quillo::DrvSendPage(nullptr);
  EXPECT_LT(test::Holdings::Now().heap_bytes, before + 1000);
}

}  // namespace
}  // namespace quillo
