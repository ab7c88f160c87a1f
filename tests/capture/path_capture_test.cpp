#include "capture/clip.h"
#include "capture/path.h"
#include "host/engine/services/clips.h"
#include "host/engine/services/guard.h"
#include "host/engine/services/paths.h"
#include "support/capture_fixture.h"

namespace quillo {
namespace {

using host::PathRun;

constexpr FLONG kBegin = PD_BEGINSUBPATH;
constexpr FLONG kClosed = PD_BEGINSUBPATH | PD_ENDSUBPATH | PD_CLOSEFIGURE;

// Points from coordinates in pixels.
std::vector<POINTFIX> Pixels(std::initializer_list<double> coordinates) {
  std::vector<POINTFIX> points;
  for (auto at = coordinates.begin(); at != coordinates.end(); at += 2) {
    points.push_back({static_cast<FIX>(at[0] * 16), static_cast<FIX>(at[1] * 16)});
  }
  return points;
}

const std::vector<POINTFIX> kSidewaysFirst = Pixels({0, 0, 10, 0, 10, 5, 0, 5});
const std::vector<POINTFIX> kDownFirst = Pixels({0, 0, 0, 5, 10, 5, 10, 0});

class WritePathTest : public test::CaptureTest {};

TEST_F(WritePathTest, Runs_BecomeRecords) {
  const struct {
    const char* what;
    std::vector<PathRun> runs;
    uint32_t fill_mode;
    bool drawn;
    std::string records;  // between the records that open and close the path
  } cases[] = {
      {"rectangle, first edge horizontal",
       {{kClosed, kSidewaysFirst}},
       kNoFillMode,
       true,
       "REC_RECTANGLE 10 0 0 5\nREC_CLOSEFIGURE\n"},
      {"the same, filled alternate",
       {{kClosed, kSidewaysFirst}},
       FP_ALTERNATEMODE,
       true,
       "REC_RECTANGLE 10 0 0 5\nREC_CLOSEFIGURE\n"},
      {"the same, filled winding",
       {{kClosed, kSidewaysFirst}},
       FP_WINDINGMODE,
       true,
       "REC_MOVETO 0 0\nREC_LINETO 10 0\nREC_LINETO 10 5\nREC_LINETO 0 5\nREC_CLOSEFIGURE\n"},
      {"rectangle, first edge vertical",
       {{kClosed, kDownFirst}},
       kNoFillMode,
       true,
       "REC_MOVETO 0 0\nREC_LINETO 0 5\nREC_LINETO 10 5\nREC_LINETO 10 0\nREC_CLOSEFIGURE\n"},
      {"open rectangle",
       {{kBegin, kSidewaysFirst}},
       kNoFillMode,
       true,
       "REC_MOVETO 0 0\nREC_LINETO 10 0\nREC_LINETO 10 5\nREC_LINETO 0 5\n"},
      {"edges that are off by less than a pixel",
       {{kClosed, Pixels({0, 0, 10, 0.0625, 10, 5, 0, 5})}},
       kNoFillMode,
       true,
       "REC_MOVETO 0 0\nREC_LINETO 10 0\nREC_LINETO 10 5\nREC_LINETO 0 5\nREC_CLOSEFIGURE\n"},
      {"rectangle with a part of a pixel",
       {{kClosed, Pixels({9.5, 1.4375, -0.5, 1.4375, -0.5, 7, 9.5, 7})}},
       kNoFillMode,
       true,
       "REC_RECTANGLE 0 1 10 7\nREC_CLOSEFIGURE\n"},
      {"curve after a line, over three runs",
       {{kBegin, Pixels({1, 1, 2, 2})},
        {PD_BEZIERS, Pixels({3, 3, 4, 4, 5, 5, 6, 6, 7, 7, 8, 8})},
        {PD_CLOSEFIGURE, Pixels({9, 9})}},
       kNoFillMode,
       true,
       "REC_MOVETO 1 1\nREC_LINETO 2 2\n"
       "REC_POLYBEZIER 4 2 2 3 3 4 4 5 5 0 0\nREC_POLYBEZIER 4 5 5 6 6 7 7 8 8 0 0\n"
       "REC_LINETO 9 9\nREC_CLOSEFIGURE\n"},
      {"curve that begins a figure",
       {{kBegin | PD_BEZIERS, Pixels({1, 1, 2, 2, 3, 3, 4, 4})}},
       kNoFillMode,
       true,
       "REC_MOVETO 1 1\nREC_POLYBEZIER 4 1 1 2 2 3 3 4 4 0 0\n"},
      {"two figures in one path",
       {{kBegin, Pixels({1, 1, 2, 2})}, {kBegin, Pixels({3, 3, 4, 4})}},
       kNoFillMode,
       true,
       "REC_MOVETO 1 1\nREC_LINETO 2 2\nREC_MOVETO 3 3\nREC_LINETO 4 4\n"},
      {"a lone point", {{kBegin, Pixels({1, 1})}}, kNoFillMode, false, "REC_MOVETO 1 1\n"},
      {"runs without points",
       {{kBegin, {}}, {PD_BEZIERS, {}}, {PD_CLOSEFIGURE, {}}},
       kNoFillMode,
       false,
       "REC_CLOSEFIGURE\n"},
  };
  for (const auto& c : cases) {
    device_.remembered_colour = 0x112233;
    host::PathObject path(c.runs);
    bool drawn = !c.drawn;
    EXPECT_TRUE(WritePath(device_, &path, drawn, c.fill_mode)) << c.what;
    EXPECT_EQ(drawn, c.drawn) << c.what;
    EXPECT_EQ(TakeRecords(),
              "REC_BEGINPATH\nREC_SETBKCOLOR 0x332211\n" + c.records + "REC_ENDPATH\n")
        << c.what;
  }
}

TEST_F(WritePathTest, NothingBegins_NothingOpens) {
  bool drawn = true;
  host::PathObject empty({});
  EXPECT_TRUE(WritePath(device_, &empty, drawn, kNoFillMode));
  EXPECT_FALSE(drawn);
  EXPECT_EQ(TakeRecords(), "");

  host::PathObject headless({{0, Pixels({1, 1})}});
  EXPECT_TRUE(WritePath(device_, &headless, drawn, kNoFillMode));
  EXPECT_EQ(TakeRecords(), "REC_LINETO 1 1\n");
}

TEST_F(WritePathTest, MalformedCurve_FailsAndStaysOpen) {
  for (const size_t surplus : {1u, 2u}) {
    device_.remembered_colour = 0;
    std::vector<POINTFIX> points(4 + surplus);
    host::PathObject path({{kBegin | PD_BEZIERS, points}});
    bool drawn = true;
    SetLastError(0);
    EXPECT_FALSE(WritePath(device_, &path, drawn, kNoFillMode));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(TakeRecords(), "REC_BEGINPATH\nREC_SETBKCOLOR 0x0\nREC_MOVETO 0 0\n");
  }
}

TEST_F(WritePathTest, BackgroundColour_AlternatesFromPathToPath) {
  device_.remembered_colour = 0x000001;
  host::PathObject path({{kBegin, Pixels({0, 0})}});
  bool drawn = false;
  for (const std::string colour : {"0x10000", "0x1", "0x10000"}) {
    WritePath(device_, &path, drawn, kNoFillMode);
    EXPECT_EQ(TakeRecords(),
              "REC_BEGINPATH\nREC_SETBKCOLOR " + colour + "\nREC_MOVETO 0 0\nREC_ENDPATH\n");
  }
}

class WriteClipTest : public test::CaptureTest {
 protected:
  // What a clip records for a drawing inside (10, 10, 20, 20); "" when it says that it did not.
  std::string Record(CLIPOBJ* clip, bool with_bounds = true) {
    const records::Rect drawing = {10, 10, 20, 20};
    clip_bounds_ = {-1, -1, -1, -1};
    const bool written = WriteClip(device_, clip, with_bounds ? &drawing : nullptr, &clip_bounds_);
    const std::string records = TakeRecords();
    EXPECT_EQ(written, !records.empty());
    return records;
  }

  records::Rect clip_bounds_ = {};
};

TEST_F(WriteClipTest, Rectangle_OneLargerUnlessItHoldsTheDrawing) {
  const struct {
    RECTL clip;
    const char* rectangle;  // null = left out
  } cases[] = {
      {{10, 10, 20, 20}, nullptr},
      {{11, 10, 20, 20}, "10 9 21 21"},
      {{10, 11, 20, 20}, "9 10 21 21"},
      {{10, 10, 19, 20}, "9 9 20 21"},
      {{10, 10, 20, 19}, "9 9 21 20"},
      {{INT32_MIN, INT32_MIN, 0, INT32_MAX}, "-2147483648 -2147483648 1 2147483647"},
  };
  for (const auto& c : cases) {
    host::ClipObject clip(DC_RECT, c.clip);
    const std::string records = Record(&clip);
    if (c.rectangle == nullptr) {
      EXPECT_EQ(records, "");
      EXPECT_EQ(clip_bounds_.left, -1);
      continue;
    }
    EXPECT_EQ(records, std::string("REC_BEGINPATH\nREC_RECTANGLE ") + c.rectangle +
                           "\nREC_ENDPATH\nREC_SELECTCLIPPATH\n");
    EXPECT_EQ(clip_bounds_.left, c.clip.left);
    EXPECT_EQ(clip_bounds_.bottom, c.clip.bottom);
  }
  host::ClipObject clip(DC_RECT, {0, 0, 200, 100});
  EXPECT_NE(Record(&clip, /*with_bounds=*/false), "");
}

TEST_F(WriteClipTest, Complex_OutlineIsRecordedAndFreed) {
  host::ClipObject clip({0, 0, 9, 9}, {{kClosed, Pixels({1, 2, 9, 2, 5, 8})}});
  EXPECT_EQ(Record(&clip),
            "REC_BEGINPATH\nREC_SETBKCOLOR 0xffffff\nREC_MOVETO 1 2\nREC_LINETO 9 2\n"
            "REC_LINETO 5 8\nREC_CLOSEFIGURE\nREC_ENDPATH\nREC_SELECTCLIPPATH\n");
  EXPECT_EQ(clip_bounds_.right, 9);
  EXPECT_EQ(host::LivePathCount(), 0u);
}

TEST_F(WriteClipTest, Complex_BadOutline_FailsAndIsFreed) {
  host::ClipObject clip({0, 0, 9, 9}, {{kBegin | PD_BEZIERS, Pixels({1, 2, 9, 2})}});
  EXPECT_FALSE(WriteClip(device_, &clip, nullptr));
  EXPECT_EQ(TakeRecords(), "REC_BEGINPATH\nREC_SETBKCOLOR 0xffffff\nREC_MOVETO 1 2\n");
  EXPECT_EQ(host::LivePathCount(), 0u);
}

TEST_F(WriteClipTest, NoClip_NothingRecorded) {
  EXPECT_EQ(Record(nullptr), "");
  for (const BYTE complexity : {DC_TRIVIAL, 2, 4, 255}) {
    host::ClipObject clip(complexity, {0, 0, 1, 1});
    EXPECT_EQ(Record(&clip), "") << static_cast<int>(complexity);
  }
  host::ClipObject unavailable({0, 0, 1, 1}, {{kClosed, kSidewaysFirst}});
  host::FailNextCall("CLIPOBJ_ppoGetPath");
  EXPECT_EQ(Record(&unavailable), "");
}

}  // namespace
}  // namespace quillo
