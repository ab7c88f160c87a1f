#include "base/ddi.h"

#include <cmath>

#include "capture/brush.h"
#include "capture/builders.h"
#include "capture/fill.h"
#include "capture/hooks.h"
#include "capture/pen.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/colors.h"
#include "host/engine/services/guard.h"
#include "host/engine/services/surfaces.h"
#include "host/engine/services/transforms.h"
#include "support/capture_fixture.h"

namespace quillo {
namespace {

using records::kFillBrush;
using records::kPenBrush;

TEST(DeviceWidth, TransformAndRounding) {
  host::XformObject identity(XFORML{1, 0, 0, 1, 0, 0});
  host::XformObject tripled(XFORML{3, 9, 9, 9, 9, 9});
  host::XformObject mirrored(XFORML{-1, 0, 0, 1, 0, 0});
  const struct {
    float width;
    XFORMOBJ* transform;
    int32_t pixels;
  } cases[] = {{2.5f, &identity, 3}, {2.49f, &identity, 2},         {1.1f, &tripled, 3},
               {2.5f, nullptr, 3},   {2.0f, &mirrored, -1},         {0, &tripled, 0},
               {NAN, &identity, 0},  {1e30f, &identity, INT32_MAX}, {1e30f, &mirrored, INT32_MIN}};
  for (const auto& c : cases) {
    EXPECT_EQ(DeviceWidth(c.width, c.transform), c.pixels) << c.width;
  }
}

class WritePenTest : public test::CaptureTest {
 protected:
  // What a pen with a brush of device colour 0x112233 records behind its brush.
  std::string Record(LINEATTRS& attributes, XFORMOBJ* transform = nullptr) {
    host::BrushObject brush(0x112233);
    WritePen(device_, &attributes, transform, &brush);
    const std::string records = TakeRecords();
    const std::string brush_record = "REC_CREATEBRUSH 0 0x332211 0 1 0 [00]\n";
    EXPECT_TRUE(records.starts_with(brush_record)) << records;
    return records.substr(std::min(brush_record.size(), records.size()));
  }
};

std::vector<FLOAT_LONG> Longs(std::initializer_list<LONG> values) {
  std::vector<FLOAT_LONG> entries;
  for (const LONG value : values) entries.push_back({.l = value});
  return entries;
}

TEST_F(WritePenTest, Cosmetic_StyleArrayChoosesTheRecord) {
  const struct {
    FLONG flags;
    std::vector<FLOAT_LONG> entries;
    const char* record;
  } cases[] = {
      {0, {}, "REC_CREATEPEN 0 2 0 0x332211\n"},
      {0, Longs({6, 2}), "REC_CREATEPEN 1 2 0 0x332211\n"},
      {0, Longs({1, 1, 1, 1, 1, 1, 1, 1}), "REC_CREATEPEN 2 2 0 0x332211\n"},
      {0, Longs({3, 2, 1, 2}), "REC_CREATEPEN 3 2 0 0x332211\n"},
      {0, Longs({3, 1, 1, 1, 1, 1}), "REC_CREATEPEN 4 2 0 0x332211\n"},
      {0, Longs({6, 3}), "REC_EXTCREATEPEN 0x7 2 2 6 3 0\n"},
      {0, Longs({6}), "REC_EXTCREATEPEN 0x7 2 1 6 0\n"},
      {0, Longs({1, 1, 1, 1, 1, 1, 1}), "REC_EXTCREATEPEN 0x7 2 7 1 1 1 1 1 1 1 0\n"},
      {LA_ALTERNATE, {}, "REC_EXTCREATEPEN 0x8 2 0 0\n"},
      {LA_ALTERNATE, Longs({6, 2}), "REC_EXTCREATEPEN 0x9 2 0 0\n"},
      {LA_ALTERNATE, Longs({6, 3}), "REC_EXTCREATEPEN 0xf 2 0 0\n"},
  };
  for (auto c : cases) {
    LINEATTRS attributes = {};
    attributes.fl = c.flags;
    attributes.elWidth.l = 2;
    attributes.cstyle = static_cast<ULONG>(c.entries.size());
    attributes.pstyle = c.entries.empty() ? nullptr : c.entries.data();
    EXPECT_EQ(Record(attributes), c.record);
  }
}

TEST_F(WritePenTest, Geometric_JoinsCapsWidthAndMiter) {
  host::XformObject doubled(XFORML{2, 0, 0, 2, 0, 0});
  const struct {
    ULONG join, end_cap;
    float width, miter_limit;
    XFORMOBJ* transform;
    const char* records;
  } cases[] = {
      {JOIN_ROUND, ENDCAP_ROUND, 2.5f, 10, nullptr,
       "REC_SETMITERLIMIT 10\nREC_EXTCREATEPEN 0x10000 3 0 0\n"},
      {JOIN_BEVEL, ENDCAP_SQUARE, 2.5f, 10, &doubled,
       "REC_SETMITERLIMIT 10\nREC_EXTCREATEPEN 0x11100 5 0 0\n"},
      {JOIN_MITER, ENDCAP_BUTT, 0, 0.5f, nullptr,
       "REC_SETMITERLIMIT 1\nREC_EXTCREATEPEN 0x12200 0 0 0\n"},
      {77, 77, 1, 0, nullptr, "REC_SETMITERLIMIT 1\nREC_EXTCREATEPEN 0x10000 1 0 0\n"},
  };
  for (const auto& c : cases) {
    LINEATTRS attributes = {};
    attributes.fl = LA_GEOMETRIC | LA_ALTERNATE;
    attributes.iJoin = c.join;
    attributes.iEndCap = c.end_cap;
    attributes.elWidth.e = c.width;
    attributes.eMiterLimit = c.miter_limit;
    EXPECT_EQ(Record(attributes, c.transform), c.records);
    EXPECT_GE(attributes.eMiterLimit, 1.0f);
  }
}

TEST_F(WritePenTest, Geometric_StyleEntriesAreScaled) {
  host::XformObject doubled(XFORML{2, 0, 0, 2, 0, 0});
  FLOAT_LONG entries[] = {{.e = 1.3f}, {.e = 4}};
  LINEATTRS attributes = {};
  attributes.fl = LA_GEOMETRIC;
  attributes.elWidth.e = 1;
  attributes.eMiterLimit = 1;
  attributes.pstyle = entries;
  attributes.cstyle = 2;
  EXPECT_EQ(Record(attributes, &doubled),
            "REC_SETMITERLIMIT 1\nREC_EXTCREATEPEN 0x10007 2 2 3 8 0\n");

  // Brush and miter limit have memory, the entries have not; nothing else has either.
  {
    const test::ScarceProcessHeap scarce(2);
    EXPECT_EQ(Record(attributes), "REC_SETMITERLIMIT 1\n");
  }
}

TEST_F(WritePenTest, AbsurdStyleCounts_AreNotRead) {
  FLOAT_LONG entry = {.l = 1};
  for (const ULONG count : {0x1000u, 0x40000001u, 0xFFFFFFFFu}) {
    LINEATTRS attributes = {};
    attributes.pstyle = &entry;
    attributes.cstyle = count;
    EXPECT_EQ(Record(attributes), "") << count;
    attributes.fl = LA_GEOMETRIC;
    EXPECT_EQ(Record(attributes), "REC_SETMITERLIMIT 1\nREC_EXTCREATEPEN 0x10000 0 0 0\n") << count;
    attributes = {};
    attributes.cstyle = count;
    EXPECT_EQ(Record(attributes), "REC_CREATEPEN 0 0 0 0x332211\n") << count;
  }
}

class BrushTest : public test::CaptureTest {
 protected:
  std::string Record(BRUSHOBJ* brush) {
    WriteBrush(device_, brush, kFillBrush);
    return TakeRecords();
  }

  // A brush that the driver realises from a hatch.
  static host::BrushObject::Pattern Hatch(SURFOBJ* target, XLATEOBJ* translation, ULONG hatch) {
    return {DrvRealizeBrush, target, nullptr, nullptr, translation, hatch};
  }
};

TEST_F(BrushTest, Solid_BackgroundOnlyWhenRealised) {
  host::BrushObject brush(0x112233);
  EXPECT_EQ(Record(&brush), "REC_CREATEBRUSH 0 0x332211 0 0 0 [00]\n");
  RealisedBrush realised = {kRealisedBrushSize, 0x445566, 0x778899, 0};
  brush.pvRbrush = &realised;
  EXPECT_EQ(Record(&brush), "REC_SETBKCOLOR 0x998877\nREC_CREATEBRUSH 0 0x332211 0 0 0 [00]\n");
  EXPECT_EQ(device_.remembered_colour, 0x998877u);
}

TEST_F(BrushTest, Hatch_ColoursComeFromTheVector) {
  const struct {
    std::vector<ULONG> vector;
    const char* records;
  } cases[] = {
      {{0xAABBCC, 0x112233}, "REC_SETBKCOLOR 0xccbbaa\nREC_CREATEBRUSH 2 0x332211 5 0 0 [00]\n"},
      {{0xAABBCC}, "REC_SETBKCOLOR 0xccbbaa\nREC_CREATEBRUSH 2 0x0 5 0 0 [00]\n"},
      {{1, 2, 3}, "REC_SETBKCOLOR 0xffffff\nREC_CREATEBRUSH 2 0x0 5 0 0 [00]\n"},
  };
  for (const auto& c : cases) {
    host::XlateObject translation(c.vector);
    host::BrushObject brush(Hatch(&surface_, &translation, 5));
    EXPECT_EQ(Record(&brush), c.records);
    translation.pulXlate = nullptr;  // the vector then has to be asked for
    host::BrushObject asked(Hatch(&surface_, &translation, 5));
    EXPECT_EQ(Record(&asked), c.records);
  }
  host::BrushObject plain(Hatch(&surface_, nullptr, 0));
  EXPECT_EQ(Record(&plain), "REC_SETBKCOLOR 0xffffff\nREC_CREATEBRUSH 2 0x0 0 0 0 [00]\n");
}

TEST_F(BrushTest, Pattern_TravelsAsPackedBitmap) {
  uint32_t row = 0x11223344;
  host::Surface pattern({2, 1}, BMF_8BPP, false, &row, sizeof row, 4);
  host::XlateObject translation({0xAABBCC});
  host::BrushObject brush(
      {DrvRealizeBrush, &surface_, &pattern, nullptr, &translation, HS_DDI_MAX});
  const std::string records = Record(&brush);
  const std::string head =
      "REC_SETBKCOLOR 0xffffff\nREC_CREATEBRUSH 6 0x0 0 0 1068 [28000000020000000100000001000800"
      "0000000000000000c05d0000e02e00000000000000000000ccbbaa00";
  EXPECT_EQ(records.substr(0, head.size()), head);
  EXPECT_TRUE(records.ends_with("000000004433221100]\n"));

  const auto* realised = static_cast<const RealisedBrush*>(brush.pvRbrush);
  EXPECT_EQ(realised->total_size, 24u + 1068);
  EXPECT_EQ(realised->hatch_or_pattern, 1068u);
}

TEST_F(BrushTest, Pattern_WithoutBitsOrBeyondItsBlock_StaysInside) {
  host::Surface pattern({2, 1}, BMF_24BPP, false, nullptr, 8, 8);
  host::BrushObject brush({DrvRealizeBrush, &surface_, &pattern, nullptr, nullptr, HS_DDI_MAX});
  EXPECT_EQ(Record(&brush), "REC_SETBKCOLOR 0xffffff\nREC_CREATEBRUSH 6 0x0 0 0 52 [" +
                                std::string(2 * 53, '0') + "]\n");
  host::BrushObject nothing({DrvRealizeBrush, &surface_, nullptr, nullptr, nullptr, 0xFFFFFFFF});
  EXPECT_EQ(Record(&nothing), "REC_SETBKCOLOR 0xffffff\n");
}

TEST_F(BrushTest, NoBrush_NothingRecorded) {
  EXPECT_EQ(Record(nullptr), "");
  host::BrushObject unrealisable((host::BrushObject::Pattern()));
  EXPECT_EQ(Record(&unrealisable), "");
}

TEST_F(BrushTest, RealizeBrush_Failures) {
  host::BrushObject brush((host::BrushObject::Pattern()));
  SURFOBJ stray = {};
  SetLastError(0);
  EXPECT_FALSE(quillo::DrvRealizeBrush(&brush, &stray, nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_FALSE(quillo::DrvRealizeBrush(nullptr, &surface_, nullptr, nullptr, nullptr, 0));
  host::FailNextCall("BRUSHOBJ_pvAllocRbrush");
  EXPECT_FALSE(quillo::DrvRealizeBrush(&brush, &surface_, nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(brush.pvRbrush, nullptr);
}

TEST_F(BrushTest, DitherColor_AlwaysSolid) {
  EXPECT_EQ(quillo::DrvDitherColor(nullptr, 0, 0x123456, nullptr), 0u);
}

TEST_F(BrushTest, WriteFill_EachKind) {
  const struct {
    FillKind kind;
    const char* last;
  } cases[] = {{FillKind::kRectangle, "REC_FILLRECT 1 2 3 4\n"},
               {FillKind::kPath, "REC_FILLPATH\n"},
               {FillKind::kStrokeAndPath, "REC_STROKEANDFILLPATH\n"}};
  for (const auto& c : cases) {
    host::BrushObject brush(0);
    const POINTL origin = {7, -8};
    WriteFill(device_, FP_WINDINGMODE, &brush, &origin, R2_WHITE, {1, 2, 3, 4}, c.kind);
    EXPECT_EQ(TakeRecords(), std::string("REC_SETPOLYFILLMODE 2\n"
                                         "REC_CREATEBRUSH 0 0x0 0 0 0 [00]\n"
                                         "REC_SETBRUSHORG 7 -8\nREC_SETROP2 0\n") +
                                 c.last);
  }
}

}  // namespace
}  // namespace quillo
