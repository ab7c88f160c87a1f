#include "capture/brush.h"
#include "capture/fill.h"
#include "capture/hooks.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/colors.h"
#include "host/engine/services/guard.h"
#include "host/engine/services/surfaces.h"
#include "support/capture_fixture.h"

namespace quillo {
namespace {

using Pattern = host::BrushObject::Pattern;

class BrushTest : public test::CaptureTest {
 protected:
  std::string Record(BRUSHOBJ* brush) {
    WriteBrush(device_, brush, records::kFillBrush);
    return TakeRecords();
  }

  // What a brush records that the driver realises first.
  std::string Realise(SURFOBJ* pattern, XLATEOBJ* translation, ULONG hatch) {
    host::BrushObject brush({DrvRealizeBrush, &surface_, pattern, nullptr, translation, hatch});
    return Record(&brush);
  }
};

TEST_F(BrushTest, Solid_BackgroundOnlyWhenRealised) {
  host::BrushObject brush(0x112233);
  EXPECT_EQ(Record(&brush), "CREATEBRUSH 0 0x332211 0 0 0 [00]\n");
  RealisedBrush realised = {kRealisedBrushSize, 0x445566, 0x778899, 0};
  brush.pvRbrush = &realised;
  EXPECT_EQ(Record(&brush), "SETBKCOLOR 0x998877\nCREATEBRUSH 0 0x332211 0 0 0 [00]\n");
  EXPECT_EQ(device_.remembered_colour, 0x998877u);
}

TEST_F(BrushTest, Hatch_ColoursComeFromTheVector) {
  const struct {
    std::vector<ULONG> vector;
    const char* records;
  } cases[] = {
      {{0xAABBCC, 0x112233}, "SETBKCOLOR 0xccbbaa\nCREATEBRUSH 2 0x332211 5 0 0 [00]\n"},
      {{0xAABBCC}, "SETBKCOLOR 0xccbbaa\nCREATEBRUSH 2 0x0 5 0 0 [00]\n"},
      {{1, 2, 3}, "SETBKCOLOR 0xffffff\nCREATEBRUSH 2 0x0 5 0 0 [00]\n"},
  };
  for (const auto& c : cases) {
    host::XlateObject translation(c.vector);
    EXPECT_EQ(Realise(nullptr, &translation, 5), c.records);
    translation.pulXlate = nullptr;  // the vector then has to be asked for
    EXPECT_EQ(Realise(nullptr, &translation, 5), c.records);
  }
  EXPECT_EQ(Realise(nullptr, nullptr, 0), "SETBKCOLOR 0xffffff\nCREATEBRUSH 2 0x0 0 0 0 [00]\n");
}

TEST_F(BrushTest, Pattern_TravelsAsPackedBitmap) {
  uint32_t row = 0x11223344;
  host::Surface pattern({2, 1}, BMF_8BPP, false, &row, sizeof row, 4);
  host::XlateObject translation({0xAABBCC});
  host::BrushObject brush(
      {DrvRealizeBrush, &surface_, &pattern, nullptr, &translation, HS_DDI_MAX});
  const std::string records = Record(&brush);
  EXPECT_TRUE(records.starts_with(
      "SETBKCOLOR 0xffffff\nCREATEBRUSH 6 0x0 0 0 1068 [2800000002000000010000000100080000000000"
      "00000000c05d0000e02e00000000000000000000ccbbaa0000000000"))
      << records;
  EXPECT_TRUE(records.ends_with("000000004433221100]\n")) << records;
  EXPECT_EQ(static_cast<const RealisedBrush*>(brush.pvRbrush)->total_size, 24u + 1068);
}

TEST_F(BrushTest, Pattern_WithoutBitsOrBeyondItsBlock_StaysInside) {
  host::Surface pattern({2, 1}, BMF_24BPP, false, nullptr, 8, 8);
  EXPECT_EQ(Realise(&pattern, nullptr, HS_DDI_MAX),
            "SETBKCOLOR 0xffffff\nCREATEBRUSH 6 0x0 0 0 52 [" + std::string(2 * 53, '0') + "]\n");
  EXPECT_EQ(Realise(nullptr, nullptr, 0xFFFFFFFF), "SETBKCOLOR 0xffffff\n");
}

TEST_F(BrushTest, NoBrush_NothingRecorded) {
  EXPECT_EQ(Record(nullptr), "");
  host::BrushObject unrealisable((Pattern()));
  EXPECT_EQ(Record(&unrealisable), "");
}

TEST_F(BrushTest, RealizeBrush_Failures) {
  host::BrushObject brush((Pattern()));
  SURFOBJ stray = {};
  SetLastError(0);
  EXPECT_FALSE(quillo::DrvRealizeBrush(&brush, &stray, nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_FALSE(quillo::DrvRealizeBrush(nullptr, &surface_, nullptr, nullptr, nullptr, 0));
  host::FailNextCall("BRUSHOBJ_pvAllocRbrush");
  EXPECT_FALSE(quillo::DrvRealizeBrush(&brush, &surface_, nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(brush.pvRbrush, nullptr);
  EXPECT_EQ(quillo::DrvDitherColor(nullptr, 0, 0x123456, nullptr), 0u);
}

TEST_F(BrushTest, WriteFill_OfARectangle) {
  host::BrushObject brush(0);
  const POINTL origin = {7, -8};
  WriteFill(device_, FP_WINDINGMODE, &brush, &origin, R2_WHITE, {1, 2, 3, 4}, FillKind::kRectangle);
  EXPECT_EQ(TakeRecords(),
            "SETPOLYFILLMODE 2\nCREATEBRUSH 0 0x0 0 0 0 [00]\nSETBRUSHORG 7 -8\nSETROP2 0\n"
            "FILLRECT 1 2 3 4\n");
}

}  // namespace
}  // namespace quillo
