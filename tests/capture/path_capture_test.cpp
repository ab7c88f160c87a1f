#include "capture/clip.h"
#include "capture/path.h"
#include "host/engine/services/clips.h"
#include "host/engine/services/guard.h"
#include "host/engine/services/paths.h"
#include "support/capture_fixture.h"

namespace quillo {
namespace {

constexpr FLONG kBegin = PD_BEGINSUBPATH;
constexpr FLONG kClosed = PD_BEGINSUBPATH | PD_ENDSUBPATH | PD_CLOSEFIGURE;

// A run through points in pixels.
host::PathRun RunOf(FLONG flags, std::initializer_list<double> coordinates) {
  host::PathRun run = {flags, {}};
  for (auto at = coordinates.begin(); at != coordinates.end(); at += 2) {
    run.points.push_back({static_cast<FIX>(at[0] * 16), static_cast<FIX>(at[1] * 16)});
  }
  return run;
}

class WritePathTest : public test::CaptureTest {
 protected:
  // What a path records, which must succeed; `drawn` is judged by the records.
  std::string Record(const std::vector<host::PathRun>& runs, uint32_t fill_mode = kNoFillMode) {
    host::PathObject path(runs);
    bool drawn = false;
    EXPECT_TRUE(WritePath(device_, &path, drawn, fill_mode));
    std::string records = TakeRecords();
    const auto has = [&records](const char* name) {
      return records.find(name) != std::string::npos;
    };
    EXPECT_EQ(drawn, has("LINETO") || has("RECTANGLE") || has("POLYBEZIER")) << records;
    return records;
  }
};

TEST_F(WritePathTest, Runs_BecomeRecords) {
  const struct {
    const char* what;
    std::vector<host::PathRun> runs;
    uint32_t fill_mode;
    std::string records;
  } cases[] = {
      // clang-format off
      {"rectangle, sideways first", {RunOf(kClosed, {0, 0, 10, 0, 10, 5, 0, 5})}, kNoFillMode,
       "RECTANGLE 10 0 0 5\nCLOSEFIGURE\n"},
      {"the same, filled alternate", {RunOf(kClosed, {0, 0, 10, 0, 10, 5, 0, 5})}, FP_ALTERNATEMODE,
       "RECTANGLE 10 0 0 5\nCLOSEFIGURE\n"},
      {"the same, filled winding", {RunOf(kClosed, {0, 0, 10, 0, 10, 5, 0, 5})}, FP_WINDINGMODE,
       "MOVETO 0 0\nLINETO 10 0\nLINETO 10 5\nLINETO 0 5\nCLOSEFIGURE\n"},
      {"rectangle, down first", {RunOf(kClosed, {0, 0, 0, 5, 10, 5, 10, 0})}, kNoFillMode,
       "MOVETO 0 0\nLINETO 0 5\nLINETO 10 5\nLINETO 10 0\nCLOSEFIGURE\n"},
      {"open rectangle", {RunOf(kBegin, {0, 0, 10, 0, 10, 5, 0, 5})}, kNoFillMode,
       "MOVETO 0 0\nLINETO 10 0\nLINETO 10 5\nLINETO 0 5\n"},
      {"edge off by part of a pixel", {RunOf(kClosed, {0, 0, 10, 0.0625, 10, 5, 0, 5})}, kNoFillMode,
       "MOVETO 0 0\nLINETO 10 0\nLINETO 10 5\nLINETO 0 5\nCLOSEFIGURE\n"},
      {"halves round up", {RunOf(kClosed, {9.5, 1.4375, -0.5, 1.4375, -0.5, 7, 9.5, 7})}, kNoFillMode,
       "RECTANGLE 0 1 10 7\nCLOSEFIGURE\n"},
      {"halves below zero", {RunOf(kBegin, {-1.5, -1.5625, -0.5625, 0.4375})}, kNoFillMode,
       "MOVETO -1 -2\nLINETO -1 0\n"},
      {"curves between lines, over three runs",
       {RunOf(kBegin, {1, 1, 2, 2}), RunOf(PD_BEZIERS, {3, 3, 4, 4, 5, 5, 6, 6, 7, 7, 8, 8}),
        RunOf(PD_CLOSEFIGURE, {9, 9})}, kNoFillMode,
       "MOVETO 1 1\nLINETO 2 2\nPOLYBEZIER 4 2 2 3 3 4 4 5 5 0 0\n"
       "POLYBEZIER 4 5 5 6 6 7 7 8 8 0 0\nLINETO 9 9\nCLOSEFIGURE\n"},
      {"curve first", {RunOf(kBegin | PD_BEZIERS, {1, 1, 2, 2, 3, 3, 4, 4})}, kNoFillMode,
       "MOVETO 1 1\nPOLYBEZIER 4 1 1 2 2 3 3 4 4 0 0\n"},
      {"two figures", {RunOf(kBegin, {1, 1, 2, 2}), RunOf(kBegin, {3, 3, 4, 4})}, kNoFillMode,
       "MOVETO 1 1\nLINETO 2 2\nMOVETO 3 3\nLINETO 4 4\n"},
      {"lone point", {RunOf(kBegin, {1, 1})}, kNoFillMode, "MOVETO 1 1\n"},
      {"no points", {RunOf(kBegin, {}), RunOf(PD_BEZIERS, {}), RunOf(PD_CLOSEFIGURE, {})}, kNoFillMode,
       "CLOSEFIGURE\n"},
      // clang-format on
  };
  for (const auto& c : cases) {
    device_.remembered_colour = 0x112233;
    EXPECT_EQ(Record(c.runs, c.fill_mode),
              "BEGINPATH\nSETBKCOLOR 0x332211\n" + c.records + "ENDPATH\n")
        << c.what;
  }
  EXPECT_EQ(Record({}), "");
  EXPECT_EQ(Record({RunOf(0, {1, 1})}), "LINETO 1 1\n");
}

TEST_F(WritePathTest, MalformedCurve_FailsAndStaysOpen) {
  for (const size_t points : {5u, 6u}) {
    host::PathObject path({{kBegin | PD_BEZIERS, std::vector<POINTFIX>(points)}});
    bool drawn = true;
    SetLastError(0);
    EXPECT_FALSE(WritePath(device_, &path, drawn, kNoFillMode));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(TakeRecords(), "BEGINPATH\nSETBKCOLOR 0xffffff\nMOVETO 0 0\n");
  }
}

TEST_F(WritePathTest, BackgroundColour_AlternatesFromPathToPath) {
  device_.remembered_colour = 0x000001;
  for (const std::string colour : {"0x10000", "0x1", "0x10000"}) {
    EXPECT_EQ(Record({RunOf(kBegin, {})}), "BEGINPATH\nSETBKCOLOR " + colour + "\nENDPATH\n");
  }
}

class WriteClipTest : public test::CaptureTest {
 protected:
  // What a clip records; "" when it says that it did not.
  std::string Record(CLIPOBJ* clip, const records::Rect* drawing_bounds) {
    bounds_ = {-1, -1, -1, -1};
    const bool written = WriteClip(device_, clip, drawing_bounds, &bounds_);
    std::string records = TakeRecords();
    EXPECT_EQ(written, !records.empty());
    EXPECT_EQ(bounds_.left == -1, records.empty());
    return records;
  }

  records::Rect bounds_ = {};  // of the last recorded clip
};

TEST_F(WriteClipTest, Rectangle_OneLargerUnlessItHoldsTheDrawing) {
  const records::Rect drawing = {10, 10, 20, 20};
  const struct {
    RECTL clip;
    const records::Rect* drawing;
    const char* rectangle;  // null = left out
  } cases[] = {
      {{10, 10, 20, 20}, &drawing, nullptr},
      {{11, 10, 20, 20}, &drawing, "10 9 21 21"},
      {{10, 11, 20, 20}, &drawing, "9 10 21 21"},
      {{10, 10, 19, 20}, &drawing, "9 9 20 21"},
      {{10, 10, 20, 19}, &drawing, "9 9 21 20"},
      {{10, 10, 20, 20}, nullptr, "9 9 21 21"},
      {{INT32_MIN, INT32_MIN, 0, INT32_MAX}, &drawing, "-2147483648 -2147483648 1 2147483647"},
  };
  for (const auto& c : cases) {
    host::ClipObject clip(DC_RECT, c.clip);
    const std::string rectangle = c.rectangle != nullptr ? c.rectangle : "";
    EXPECT_EQ(Record(&clip, c.drawing), rectangle.empty() ? ""
                                                          : "BEGINPATH\nRECTANGLE " + rectangle +
                                                                "\nENDPATH\nSELECTCLIPPATH\n");
    EXPECT_EQ(bounds_.right, rectangle.empty() ? -1 : c.clip.right);
  }
}

TEST_F(WriteClipTest, Complex_OutlineIsRecordedAndFreed) {
  host::ClipObject clip({0, 0, 9, 9}, {RunOf(kClosed, {1, 2, 9, 2, 5, 8})});
  const std::string opening = "BEGINPATH\nSETBKCOLOR 0xffffff\nMOVETO 1 2\n";
  EXPECT_EQ(Record(&clip, nullptr),
            opening + "LINETO 9 2\nLINETO 5 8\nCLOSEFIGURE\nENDPATH\nSELECTCLIPPATH\n");
  EXPECT_EQ(bounds_.bottom, 8);

  device_.remembered_colour = 0xFFFFFF;
  host::ClipObject malformed({0, 0, 9, 9}, {RunOf(kBegin | PD_BEZIERS, {1, 2, 9, 2})});
  EXPECT_FALSE(WriteClip(device_, &malformed, nullptr));
  EXPECT_EQ(TakeRecords(), opening);
  EXPECT_EQ(host::LivePathCount(), 0u);
}

TEST_F(WriteClipTest, NoClip_NothingRecorded) {
  EXPECT_EQ(Record(nullptr, nullptr), "");
  for (const BYTE complexity : {DC_TRIVIAL, 2, 4, 255}) {
    host::ClipObject clip(complexity, {0, 0, 1, 1});
    EXPECT_EQ(Record(&clip, nullptr), "") << static_cast<int>(complexity);
  }
  host::ClipObject unavailable({0, 0, 1, 1}, {RunOf(kClosed, {1, 2, 9, 2, 5, 8})});
  host::FailNextCall("CLIPOBJ_ppoGetPath");
  EXPECT_EQ(Record(&unavailable, nullptr), "");
}

}  // namespace
}  // namespace quillo
