#include "base/ddi.h"

#include <functional>
#include <optional>

#include "capture/font.h"
#include "capture/hooks.h"
#include "capture/text_run.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/clips.h"
#include "host/engine/services/fonts.h"
#include "host/engine/services/guard.h"
#include "host/engine/services/strings.h"
#include "support/capture_fixture.h"

namespace quillo {
namespace {

constexpr XFORML kIdentity = {1, 0, 0, 1, 0, 0};
constexpr XFORML kHalf = {0.5f, 0, 0, 0.5f, 100, 50};  // font space is twice as fine as the page
constexpr XFORML kFlat = {1, 0, 2, 0, 0, 0};           // has no inverse
const char* const kHalfRecord = "SETWORLDTRANSFORM 0.5 0 0 0.5 100 50\n";

/// Glyphs one behind the other, 10 pixels apart and slowly sinking.
std::vector<GLYPHPOS> Glyphs(size_t count) {
  std::vector<GLYPHPOS> glyphs(count);
  for (size_t i = 0; i < count; ++i) {
    const auto step = static_cast<LONG>(i);
    glyphs[i].ptl = {120 + 10 * step, 70 + step};
  }
  return glyphs;
}

class TextCaptureTest : public test::CaptureTest {
 protected:
  TextCaptureTest() {
    device_.resolution = {600, 600};
    device_.surface_size = {200, 100};
  }

  /// A string of as many glyphs as characters.
  static host::StringObject String(const std::wstring& text, FLONG accelerators, size_t batch = 0) {
    return {Glyphs(text.size()), text, accelerators, RECTL{}, batch};
  }

  BOOL Draw(STROBJ* text, FONTOBJ* font, RECTL* opaque_rect = nullptr,
            BRUSHOBJ* opaque_brush = nullptr, CLIPOBJ* clip = nullptr) {
    return quillo::DrvTextOut(&surface_, text, font, clip, nullptr, opaque_rect, &foreground_,
                              opaque_brush, nullptr, R2_COPYPEN);
  }

  host::BrushObject foreground_{0x112233};
  host::FontObject font_{{}, {L"Family", L"", L""}, kIdentity};
};

/// The font, its colours and the opaque rectangle's mode as DrvTextOut records them for `font_`.
const std::string kState =
    "CREATEFONT 0 0 0 0 0 0 0 0 0 0 0 0 0 \"Family\"+26\nSETTEXTCOLOR 0x332211\n"
    "SETBKMODE 1\n";

std::string RunAt(const std::string& place, size_t count) {
  return "SETTEXTALIGN 24\nTEXTRUN " + place + " 0 0 0 0 0 " + std::to_string(count) +
         " [000000000000]\n";
}

TEST_F(TextCaptureTest, WriteFont_DescribesTheFontInItsUnits) {
  struct Case {
    const char* what;
    IFIMETRICS metrics;
    FLONG font_type;
    std::wstring family;
    std::string record;
  };
  const auto metrics = [](auto... change) {
    IFIMETRICS m = {};
    (change(m), ...);
    return m;
  };
  const Case cases[] = {
      {"plain", metrics([](IFIMETRICS& m) {
         m.fwdUnitsPerEm = 2048;
         m.fwdAveCharWidth = 900;
         m.usWinWeight = 400;
         m.jWinCharSet = 177;
         m.jWinPitchAndFamily = 0x22;
       }),
       FO_TYPE_TRUETYPE, L"Arial", "2048 900 0 0 400 0 0 0 177 0 0 0 34 \"Arial\"+27"},
      {"sign-extended", metrics([](IFIMETRICS& m) {
         m.fwdUnitsPerEm = -2;
         m.fwdAveCharWidth = -3;
         m.usWinWeight = 0xFFFF;
       }),
       0, L"", "-2 -3 0 0 65535 0 0 0 0 0 0 0 0 \"\"+32"},
      {"italic face", metrics([](IFIMETRICS& m) { m.fsSelection = FM_SEL_ITALIC; }), 0, L"F",
       "0 0 0 0 0 1 0 0 0 0 0 0 0 \"F\"+31"},
      {"italic by simulation", metrics(), FO_SIM_ITALIC, L"F",
       "0 0 0 0 0 1 0 0 0 0 0 0 0 \"F\"+31"},
      {"struck out, underlined, outlined, bold", metrics([](IFIMETRICS& m) {
         m.fsSelection =
             FM_SEL_STRIKEOUT | FM_SEL_UNDERSCORE | FM_SEL_OUTLINED | FM_SEL_BOLD | FM_SEL_NEGATIVE;
       }),
       FO_SIM_BOLD, L"F", "0 0 0 0 0 0 0 16 0 8 0 0 0 \"F\"+31"},
      {"longest name", metrics(), 0, std::wstring(31, L'n'),
       "0 0 0 0 0 0 0 0 0 0 0 0 0 \"" + std::string(31, 'n') + "\"+1"},
      {"longer name", metrics(), 0, std::wstring(40, L'n'),
       "0 0 0 0 0 0 0 0 0 0 0 0 0 \"" + std::string(31, 'n') + "\"+1"},
  };
  for (const Case& c : cases) {
    host::FontObject font(c.metrics, {c.family, L"Style", L"Full"}, kIdentity, c.font_type);
    EXPECT_TRUE(WriteFont(device_, &font)) << c.what;
    EXPECT_EQ(TakeRecords(), "CREATEFONT " + c.record + "\n") << c.what;
  }
}

TEST_F(TextCaptureTest, TextRun_GoesWholeOrGlyphByGlyph) {
  const std::string one = "EXTTEXTOUT 120 70 0x0 0 0 200 100 1 0 \"a\"+1\n";
  const std::string all = "EXTTEXTOUT 120 70 0x0 0 0 200 100 3 0 \"abc\"+1\n";
  const auto glyphs = [](const std::string& second, const std::string& third) {
    return "BEGINGLYPHRUNS\nEXTTEXTOUT 120 70 0x0 0 0 200 100 1 0 \"a\"+1\n"
           "EXTTEXTOUT " +
           second +
           " 0x0 0 0 200 100 1 0 \"b\"+1\n"
           "EXTTEXTOUT " +
           third + " 0x0 0 0 200 100 1 0 \"c\"+1\nENDGLYPHRUNS\n";
  };
  const std::string single = "BEGINGLYPHRUNS\n" + one + "ENDGLYPHRUNS\n";
  const struct {
    const char* what;
    std::wstring text;
    FLONG accelerators;
    Resolution resolution;
    std::string records;
  } cases[] = {
      {"one glyph", L"a", SO_HORIZONTAL, {600, 600}, one},
      {"one glyph, vertical", L"a", SO_VERTICAL, {600, 600}, single},
      {"one glyph, uneven resolution", L"a", 0, {600, 300}, single},
      {"free placement", L"abc", 0, {600, 600}, glyphs("130 71", "140 72")},
      {"horizontal", L"abc", SO_HORIZONTAL, {600, 600}, glyphs("130 70", "140 70")},
      {"vertical", L"abc", SO_VERTICAL, {600, 600}, glyphs("120 71", "120 72")},
      {"both", L"abc", SO_HORIZONTAL | SO_VERTICAL, {600, 600}, glyphs("130 70", "140 70")},
      {"default placement", L"abc", SO_FLAG_DEFAULT_PLACEMENT | SO_HORIZONTAL, {600, 600}, all},
      {"default placement, vertical",
       L"abc",
       SO_FLAG_DEFAULT_PLACEMENT | SO_VERTICAL,
       {600, 600},
       glyphs("120 71", "120 72")},
      {"default placement, uneven resolution",
       L"abc",
       SO_FLAG_DEFAULT_PLACEMENT,
       {600, 300},
       glyphs("130 71", "140 72")},
  };
  for (const auto& c : cases) {
    device_.resolution = c.resolution;
    const auto text = String(c.text, c.accelerators);
    EXPECT_TRUE(WriteTextRun(device_, {text.pgp, text.cGlyphs}, text, &font_.Transform(), nullptr,
                             text.pwszOrg))
        << c.what;
    EXPECT_EQ(TakeRecords(), RunAt("120 70", c.text.size()) + c.records) << c.what;
  }
  const auto nothing = String(L"", 0);
  EXPECT_TRUE(WriteTextRun(device_, {}, nothing, &font_.Transform(), nullptr, nullptr));
  EXPECT_EQ(TakeRecords(), "");
}

TEST_F(TextCaptureTest, TextRun_IsRecordedInFontSpace) {
  host::FontObject font({}, {}, kHalf);
  const RECTL opaque = {90, 40, 110, 60};
  const auto text = String(L"ab", SO_GLYPHINDEX_TEXTOUT | SO_HORIZONTAL);
  EXPECT_TRUE(WriteTextRun(device_, {text.pgp, 2}, text, &font.Transform(), &opaque, text.pwszOrg));
  EXPECT_EQ(TakeRecords(), RunAt("40 40", 2) +
                               "BEGINGLYPHRUNS\n"
                               "EXTTEXTOUT 40 40 0x12 -20 -20 20 20 1 0 \"a\"+1\n"
                               "EXTTEXTOUT 60 40 0x12 -20 -20 20 20 1 0 \"b\"+1\n"
                               "ENDGLYPHRUNS\n");
  EXPECT_TRUE(WriteTextRun(device_, {text.pgp, 1}, text, &font.Transform(), nullptr, text.pwszOrg));
  EXPECT_EQ(TakeRecords(),
            RunAt("40 40", 1) + "EXTTEXTOUT 40 40 0x10 -200 -100 200 100 1 0 \"a\"+1\n");
}

TEST_F(TextCaptureTest, TextRun_WithoutCharacters_RecordsNone) {
  for (const FLONG accelerators : {SO_FLAG_DEFAULT_PLACEMENT, SO_HORIZONTAL}) {
    auto text = String(L"ab", accelerators);
    text.pwszOrg = nullptr;
    EXPECT_TRUE(Draw(&text, &font_));
    const std::string records = TakeDrawing();
    EXPECT_NE(records.find("EXTTEXTOUT 120 70 0x0 0 0 200 100 0 0 \"\"+1\n"), std::string::npos);
  }
}

TEST_F(TextCaptureTest, TextOut_RecordsStateThenRuns) {
  RECTL opaque = {0, 0, 10, 10};
  host::BrushObject opaque_brush(0x445566);
  host::ClipObject clip(DC_RECT, {0, 0, 5, 5});
  auto text = String(L"ab", SO_FLAG_DEFAULT_PLACEMENT);
  EXPECT_TRUE(Draw(&text, &font_, &opaque, &opaque_brush, &clip));
  EXPECT_EQ(TakeDrawing(),
            "BEGINPATH\nRECTANGLE -1 -1 6 6\nENDPATH\nSELECTCLIPPATH\n"
            "CREATEFONT 0 0 0 0 0 0 0 0 0 0 0 0 0 \"Family\"+26\nSETTEXTCOLOR 0x332211\n"
            "SETBKCOLOR 0x665544\nSETBKMODE 2\n" +
                RunAt("120 70", 2) + "EXTTEXTOUT 120 70 0x2 0 0 10 10 2 0 \"ab\"+1\n");
  EXPECT_EQ(device_.remembered_colour, 0x665544u);
}

TEST_F(TextCaptureTest, BrushesThatAreNotSolid_GiveBlackOnWhite) {
  foreground_.iSolidColor = host::kNotSolid;
  host::BrushObject opaque_brush(host::kNotSolid);
  auto text = String(L"", 0);
  EXPECT_TRUE(Draw(&text, &font_, nullptr, &opaque_brush));
  EXPECT_EQ(TakeDrawing(),
            "CREATEFONT 0 0 0 0 0 0 0 0 0 0 0 0 0 \"Family\"+26\nSETTEXTCOLOR 0x0\n"
            "SETBKCOLOR 0xffffff\nSETBKMODE 1\n");
}

TEST_F(TextCaptureTest, VerticalString_SetsItsAlignmentInVain) {
  auto text = String(L"a", SO_VERTICAL);
  EXPECT_TRUE(Draw(&text, &font_));
  EXPECT_EQ(TakeDrawing(),
            "CREATEFONT 0 0 0 0 0 0 0 0 0 0 0 0 0 \"Family\"+26\nSETTEXTALIGN 30\n"
            "SETTEXTCOLOR 0x332211\nSETBKMODE 1\n" +
                RunAt("120 70", 1) +
                "BEGINGLYPHRUNS\nEXTTEXTOUT 120 70 0x0 0 0 200 100 1 0 \"a\"+1\n"
                "ENDGLYPHRUNS\n");
}

TEST_F(TextCaptureTest, PositionsInBatches_GiveARunEach) {
  auto text = String(L"abcde", SO_FLAG_DEFAULT_PLACEMENT, /*batch=*/2);
  const std::string runs = RunAt("120 70", 2) + "EXTTEXTOUT 120 70 0x0 0 0 200 100 2 0 \"ab\"+1\n" +
                           RunAt("140 72", 2) + "EXTTEXTOUT 140 72 0x0 0 0 200 100 2 0 \"cd\"+1\n" +
                           RunAt("160 74", 1) + "EXTTEXTOUT 160 74 0x0 0 0 200 100 1 0 \"e\"+1\n";
  EXPECT_TRUE(Draw(&text, &font_));
  EXPECT_EQ(TakeDrawing(), kState + runs);
  EXPECT_TRUE(Draw(&text, &font_));  // the enumeration starts anew
  EXPECT_EQ(TakeDrawing(), kState + runs);
}

TEST_F(TextCaptureTest, Transform_IsResetBehindTheBracketOnSuccessAndInsideOnFailure) {
  auto text = String(L"a", 0);
  host::FontObject scaled({}, {L"Family", L"", L""}, kHalf);
  const std::string open = "RESETWORLDTRANSFORM\nSAVEDC\n";
  EXPECT_TRUE(Draw(&text, &scaled));
  EXPECT_EQ(TakeRecords(), open + kHalfRecord + kState + RunAt("40 40", 1) +
                               "EXTTEXTOUT 40 40 0x0 -200 -100 200 100 1 0 \"a\"+1\n"
                               "RESTOREDC\nRESETWORLDTRANSFORM\n");

  host::FailNextCall("FONTOBJ_pifi");
  EXPECT_FALSE(Draw(&text, &scaled));
  EXPECT_EQ(TakeRecords(), open + kHalfRecord + "RESETWORLDTRANSFORM\nRESTOREDC\n");

  host::FailNextCall("FONTOBJ_pifi");
  EXPECT_FALSE(Draw(&text, &font_));
  EXPECT_EQ(TakeRecords(), open + "RESTOREDC\n");
}

TEST_F(TextCaptureTest, RunThatCannotBeHad_EndsTheCallAsFailed) {
  host::FontObject flat({}, {L"Family", L"", L""}, kFlat);
  auto text = String(L"a", 0);
  EXPECT_FALSE(Draw(&text, &flat));
  EXPECT_EQ(TakeRecords(),
            "RESETWORLDTRANSFORM\nSAVEDC\n"
            "SETWORLDTRANSFORM 1 0 2 0 0 0\n" +
                kState + "RESETWORLDTRANSFORM\nRESTOREDC\n");

  auto batches = String(L"abcd", SO_FLAG_DEFAULT_PLACEMENT, /*batch=*/2);
  host::FailNextCall("STROBJ_bEnum");
  EXPECT_FALSE(Draw(&batches, &font_));
  EXPECT_EQ(TakeDrawing(), kState);
}

TEST_F(TextCaptureTest, MissingArgumentsAndDeviceState_DecideBeforeAnythingIsRecorded) {
  auto text = String(L"a", 0);
  SURFOBJ foreign = {};
  const struct {
    const char* what;
    std::function<BOOL()> draw;
    uint32_t flags;
    BOOL result;
    DWORD error;
  } cases[] = {
      {"no string", [&] { return Draw(nullptr, &font_); }, 0, FALSE, ERROR_INVALID_PARAMETER},
      {"no font", [&] { return Draw(&text, nullptr); }, 0, FALSE, ERROR_INVALID_PARAMETER},
      {"no surface",
       [&] {
         return quillo::DrvTextOut(nullptr, &text, &font_, nullptr, nullptr, nullptr, &foreground_,
                                   nullptr, nullptr, R2_COPYPEN);
       },
       0, FALSE, ERROR_INVALID_PARAMETER},
      {"surface of no device",
       [&] {
         return quillo::DrvTextOut(&foreign, &text, &font_, nullptr, nullptr, nullptr, &foreground_,
                                   nullptr, nullptr, R2_COPYPEN);
       },
       0, FALSE, ERROR_INVALID_PARAMETER},
      {"refused", [&] { return Draw(&text, &font_); }, kDrawingRefused, FALSE, 0},
      {"discarded", [&] { return Draw(&text, &font_); }, kDrawingDiscarded, TRUE, 0},
  };
  for (const auto& c : cases) {
    device_.flags = c.flags;
    SetLastError(0);
    EXPECT_EQ(c.draw(), c.result) << c.what;
    EXPECT_EQ(GetLastError(), c.error) << c.what;
    EXPECT_EQ(TakeRecords(), "") << c.what;
  }
}

TEST_F(TextCaptureTest, PayloadsThatFindNoMemory_AreDroppedSilently) {
  auto text = String(L"abc", SO_HORIZONTAL);
  BOOL drawn = FALSE;
  {
    const test::FailingAllocation no_memory(0, /*rest=*/true);
    drawn = Draw(&text, &font_);
  }
  EXPECT_TRUE(drawn);
  EXPECT_EQ(TakeDrawing(), "BEGINGLYPHRUNS\nENDGLYPHRUNS\n");
}

TEST(GetGlyphMode, AnyFont_IsBits) {
  EXPECT_EQ(quillo::DrvGetGlyphMode(nullptr, nullptr), ULONG{FO_GLYPHBITS});
}

}  // namespace
}  // namespace quillo
