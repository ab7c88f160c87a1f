#include <cmath>

#include "capture/pen.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/transforms.h"
#include "support/capture_fixture.h"

namespace quillo {
namespace {

host::XformObject g_identity(XFORML{1, 0, 0, 1, 0, 0});
host::XformObject g_doubled(XFORML{2, 9, 9, 9, 9, 9});
host::XformObject g_mirrored(XFORML{-1, 0, 0, 1, 0, 0});

TEST(DeviceWidth, TransformAndRounding) {
  const struct {
    float width;
    XFORMOBJ* transform;
    int32_t pixels;
  } cases[] = {
      {2.5f, &g_identity, 3}, {2.49f, &g_identity, 2},         {1.3f, &g_doubled, 3},
      {2.5f, nullptr, 3},     {2.0f, &g_mirrored, -1},         {0, &g_doubled, 0},
      {NAN, &g_identity, 0},  {1e30f, &g_identity, INT32_MAX}, {1e30f, &g_mirrored, INT32_MIN}};
  for (const auto& c : cases) EXPECT_EQ(DeviceWidth(c.width, c.transform), c.pixels) << c.width;
}

class WritePenTest : public test::CaptureTest {
 protected:
  // What a pen with a brush of device colour 0x112233 records behind that brush.
  std::string Record(LINEATTRS attributes, XFORMOBJ* transform = nullptr) {
    const std::string brush_record = "CREATEBRUSH 0 0x332211 0 1 0 [00]\n";
    host::BrushObject brush(0x112233);
    WritePen(device_, &attributes, transform, &brush);
    const std::string records = TakeRecords();
    EXPECT_TRUE(records.starts_with(brush_record)) << records;
    return records.substr(std::min(brush_record.size(), records.size()));
  }

  static LINEATTRS Geometric(ULONG join, ULONG end_cap, float width, float miter_limit) {
    LINEATTRS attributes = {};
    attributes.fl = LA_GEOMETRIC | LA_ALTERNATE;
    attributes.iJoin = join;
    attributes.iEndCap = end_cap;
    attributes.elWidth.e = width;
    attributes.eMiterLimit = miter_limit;
    return attributes;
  }
};

TEST_F(WritePenTest, Cosmetic_StyleArrayChoosesTheRecord) {
  const struct {
    FLONG flags;
    std::vector<LONG> entries;
    const char* record;
  } cases[] = {
      {0, {}, "CREATEPEN 0 2 0 0x332211\n"},
      {0, {6, 2}, "CREATEPEN 1 2 0 0x332211\n"},
      {0, {1, 1, 1, 1, 1, 1, 1, 1}, "CREATEPEN 2 2 0 0x332211\n"},
      {0, {3, 2, 1, 2}, "CREATEPEN 3 2 0 0x332211\n"},
      {0, {3, 1, 1, 1, 1, 1}, "CREATEPEN 4 2 0 0x332211\n"},
      {0, {6, 3}, "EXTCREATEPEN 0x7 2 2 6 3 0\n"},
      {0, {6}, "EXTCREATEPEN 0x7 2 1 6 0\n"},
      {0, {1, 1, 1, 1, 1, 1, 1}, "EXTCREATEPEN 0x7 2 7 1 1 1 1 1 1 1 0\n"},
      {LA_ALTERNATE, {}, "EXTCREATEPEN 0x8 2 0 0\n"},
      {LA_ALTERNATE, {6, 2}, "EXTCREATEPEN 0x9 2 0 0\n"},
      {LA_ALTERNATE, {6, 3}, "EXTCREATEPEN 0xf 2 0 0\n"},
  };
  for (auto c : cases) {
    LINEATTRS attributes = {};
    attributes.fl = c.flags;
    attributes.elWidth.l = 2;
    attributes.cstyle = static_cast<ULONG>(c.entries.size());
    attributes.pstyle = reinterpret_cast<FLOAT_LONG*>(c.entries.data());
    EXPECT_EQ(Record(attributes), c.record);
  }
}

TEST_F(WritePenTest, Geometric_JoinsCapsWidthAndMiter) {
  const std::tuple<LINEATTRS, XFORMOBJ*, const char*> cases[] = {
      {Geometric(JOIN_ROUND, ENDCAP_ROUND, 2.5f, 10), nullptr,
       "SETMITERLIMIT 10\nEXTCREATEPEN 0x10000 3 0 0\n"},
      {Geometric(JOIN_BEVEL, ENDCAP_SQUARE, 2.5f, 1), &g_doubled,
       "SETMITERLIMIT 1\nEXTCREATEPEN 0x11100 5 0 0\n"},
      {Geometric(JOIN_MITER, ENDCAP_BUTT, 0, 0.5f), nullptr,
       "SETMITERLIMIT 1\nEXTCREATEPEN 0x12200 0 0 0\n"},
      {Geometric(77, 77, 1, -3), nullptr, "SETMITERLIMIT 1\nEXTCREATEPEN 0x10000 1 0 0\n"},
  };
  for (const auto& [attributes, transform, records] : cases) {
    EXPECT_EQ(Record(attributes, transform), records);
  }
  LINEATTRS changed = Geometric(0, 0, 1, 0.5f);
  WritePen(device_, &changed, nullptr, nullptr);
  EXPECT_EQ(changed.eMiterLimit, 1.0f);
}

TEST_F(WritePenTest, Geometric_StyleEntriesAreScaled) {
  FLOAT_LONG entries[] = {{.e = 1.3f}, {.e = 4}};
  LINEATTRS attributes = Geometric(0, 0, 1, 1);
  attributes.pstyle = entries;
  attributes.cstyle = 2;
  EXPECT_EQ(Record(attributes, &g_doubled), "SETMITERLIMIT 1\nEXTCREATEPEN 0x10007 2 2 3 8 0\n");
  // Without memory for the entries the pen is solid.
  const test::FailingAllocation entries_fail(2);
  EXPECT_EQ(Record(attributes), "SETMITERLIMIT 1\nEXTCREATEPEN 0x10000 1 0 0\n");
}

TEST_F(WritePenTest, StyleCounts_AllRecordedUpToWhatARecordHolds) {
  std::vector<FLOAT_LONG> entries(5000);
  std::string many = " 5000";
  for (size_t i = 0; i < entries.size() + 1; ++i) many += " 0";
  LINEATTRS long_style = Geometric(0, 0, 0, 1);
  long_style.pstyle = entries.data();
  long_style.cstyle = 5000;
  EXPECT_EQ(Record(long_style), "SETMITERLIMIT 1\nEXTCREATEPEN 0x10007 0" + many + "\n");
  long_style.fl = 0;
  EXPECT_EQ(Record(long_style), "EXTCREATEPEN 0x7 0" + many + "\n");

  FLOAT_LONG entry = {.l = 1};
  for (const ULONG count : {0x3FFFFFFCu, 0x40000001u, 0xFFFFFFFFu}) {
    LINEATTRS cosmetic = {};
    cosmetic.cstyle = count;
    EXPECT_EQ(Record(cosmetic), "CREATEPEN 0 0 0 0x332211\n") << count;
    cosmetic.pstyle = &entry;
    EXPECT_EQ(Record(cosmetic), "") << count;
    LINEATTRS geometric = Geometric(0, 0, 0, 1);
    geometric.cstyle = count;
    geometric.pstyle = &entry;
    EXPECT_EQ(Record(geometric), "SETMITERLIMIT 1\nEXTCREATEPEN 0x10000 0 0 0\n") << count;
  }
}

}  // namespace
}  // namespace quillo
