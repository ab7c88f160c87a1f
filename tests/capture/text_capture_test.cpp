#include "base/ddi.h"

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

/// As many glyphs as characters, 10 pixels apart and slowly sinking.
host::StringObject String(const std::wstring& text, FLONG accelerators, size_t batch = 0) {
  std::vector<GLYPHPOS> glyphs;
  for (LONG i = 0; i < static_cast<LONG>(text.size()); ++i) {
    glyphs.push_back({0, nullptr, {120 + 10 * i, 70 + i}});
  }
  return {glyphs, text, accelerators, RECTL{}, batch};
}

/// A text record on the identity transform without an opaque rectangle.
std::string Out(const std::string& place, const std::string& text) {
  return "EXTTEXTOUT " + place + " 0x0 0 0 200 100 " + std::to_string(text.size()) + " 0 \"" +
         text + "\"+1\n";
}

/// The start of a run, then its records.
std::string RunOf(const std::string& place, size_t count, const std::string& records) {
  return "SETTEXTALIGN 24\nTEXTRUN " + place + " 0 0 0 0 0 " + std::to_string(count) +
         " [000000000000]\n" + records;
}

std::string ByGlyph(const std::string& records) {
  return "BEGINGLYPHRUNS\n" + records + "ENDGLYPHRUNS\n";
}

const std::string kFont = "CREATEFONT 0 0 0 0 0 0 0 0 0 0 0 0 0 \"Family\"+26\n";
const std::string kState = kFont + "SETTEXTCOLOR 0x332211\nSETBKMODE 1\n";
const std::string kOpen = "RESETWORLDTRANSFORM\nSAVEDC\n";

class TextCaptureTest : public test::CaptureTest {
 protected:
  TextCaptureTest() {
    device_.resolution = {600, 600};
    device_.surface_size = {200, 100};
  }

  BOOL Draw(SURFOBJ* surface, STROBJ* text, FONTOBJ* font, RECTL* opaque_rect = nullptr,
            BRUSHOBJ* opaque_brush = nullptr, CLIPOBJ* clip = nullptr) {
    return quillo::DrvTextOut(surface, text, font, clip, nullptr, opaque_rect, &foreground_,
                              opaque_brush, nullptr, R2_COPYPEN);
  }

  /// The drawing of a call that succeeds.
  std::string Drawn(host::StringObject&& text, RECTL* opaque_rect = nullptr,
                    BRUSHOBJ* opaque_brush = nullptr, CLIPOBJ* clip = nullptr) {
    EXPECT_TRUE(Draw(&surface_, &text, &font_, opaque_rect, opaque_brush, clip));
    return TakeDrawing();
  }

  host::BrushObject foreground_{0x112233};
  host::FontObject font_{{}, {L"Family", L"", L""}, kIdentity};
  host::FontObject scaled_{{}, {L"Family", L"", L""}, kHalf};
};

TEST_F(TextCaptureTest, WriteFont_DescribesTheFontInItsUnits) {
  IFIMETRICS plain = {}, odd = {}, italic = {};
  plain.fwdUnitsPerEm = 2048;
  plain.fwdAveCharWidth = 900;
  plain.usWinWeight = 400;
  plain.jWinCharSet = 177;
  plain.jWinPitchAndFamily = 0x22;
  odd.fwdUnitsPerEm = -2;
  odd.fwdAveCharWidth = -3;
  odd.usWinWeight = 0xFFFF;
  odd.fsSelection = 0xFFFF & ~FM_SEL_ITALIC;
  italic.fsSelection = FM_SEL_ITALIC;
  const std::string longest = "0 0 0 0 0 0 0 0 0 0 0 0 0 \"" + std::string(31, 'n') + "\"+1";
  const struct {
    IFIMETRICS metrics;
    FLONG type;
    std::wstring family;
    std::string record;
  } cases[] = {
      {plain, FO_SIM_BOLD, L"Arial", "2048 900 0 0 400 0 0 0 177 0 0 0 34 \"Arial\"+27"},
      {odd, 0, L"", "-2 -3 0 0 65535 0 0 16 0 8 0 0 0 \"\"+32"},
      {italic, 0, L"F", "0 0 0 0 0 1 0 0 0 0 0 0 0 \"F\"+31"},
      {{}, FO_SIM_ITALIC, L"F", "0 0 0 0 0 1 0 0 0 0 0 0 0 \"F\"+31"},
      {{}, 0, std::wstring(31, L'n'), longest},
      {{}, 0, std::wstring(40, L'n'), longest},
  };
  for (const auto& c : cases) {
    host::FontObject font(c.metrics, {c.family, L"Style", L"Full"}, kIdentity, c.type);
    EXPECT_TRUE(WriteFont(device_, &font));
    EXPECT_EQ(TakeRecords(), "CREATEFONT " + c.record + "\n");
  }
}

TEST_F(TextCaptureTest, TextRun_GoesWholeOrGlyphByGlyph) {
  const auto three = [](const std::string& second, const std::string& third) {
    return ByGlyph(Out("120 70", "a") + Out(second, "b") + Out(third, "c"));
  };
  const std::string one = Out("120 70", "a"), all = Out("120 70", "abc");
  const FLONG natural = SO_FLAG_DEFAULT_PLACEMENT;
  const struct {
    std::wstring text;
    FLONG accelerators;
    uint32_t vertical_resolution;
    std::string records;
  } cases[] = {
      {L"a", SO_HORIZONTAL, 600, one},
      {L"a", SO_VERTICAL, 600, ByGlyph(one)},
      {L"a", 0, 300, ByGlyph(one)},
      {L"abc", 0, 600, three("130 71", "140 72")},
      {L"abc", SO_HORIZONTAL, 600, three("130 70", "140 70")},
      {L"abc", SO_VERTICAL, 600, three("120 71", "120 72")},
      {L"abc", SO_HORIZONTAL | SO_VERTICAL, 600, three("130 70", "140 70")},
      {L"abc", natural | SO_HORIZONTAL, 600, all},
      {L"abc", natural | SO_VERTICAL, 600, three("120 71", "120 72")},
      {L"abc", natural, 300, three("130 71", "140 72")},
  };
  for (const auto& c : cases) {
    device_.resolution.y = c.vertical_resolution;
    const auto text = String(c.text, c.accelerators);
    EXPECT_TRUE(WriteTextRun(device_, {text.pgp, text.cGlyphs}, text, &font_.Transform(), nullptr,
                             text.pwszOrg));
    EXPECT_EQ(TakeRecords(), RunOf("120 70", c.text.size(), c.records)) << &c - cases;
  }
  EXPECT_TRUE(WriteTextRun(device_, {}, String(L"", 0), &font_.Transform(), nullptr, nullptr));
  EXPECT_EQ(TakeRecords(), "");
}

TEST_F(TextCaptureTest, TextRun_IsRecordedInFontSpace) {
  const RECTL opaque = {90, 40, 110, 60};
  const auto text = String(L"ab", SO_GLYPHINDEX_TEXTOUT | SO_HORIZONTAL);
  EXPECT_TRUE(
      WriteTextRun(device_, {text.pgp, 2}, text, &scaled_.Transform(), &opaque, text.pwszOrg));
  EXPECT_EQ(TakeRecords(), RunOf("40 40", 2,
                                 ByGlyph("EXTTEXTOUT 40 40 0x12 -20 -20 20 20 1 0 \"a\"+1\n"
                                         "EXTTEXTOUT 60 40 0x12 -20 -20 20 20 1 0 \"b\"+1\n")));
}

TEST_F(TextCaptureTest, TextOut_RecordsStateThenRuns) {
  RECTL opaque = {0, 0, 10, 10};
  host::BrushObject colour(0x445566), pattern(host::kNotSolid);
  host::ClipObject clip(DC_RECT, {0, 0, 5, 5});
  EXPECT_EQ(Drawn(String(L"ab", SO_FLAG_DEFAULT_PLACEMENT), &opaque, &colour, &clip),
            "BEGINPATH\nRECTANGLE -1 -1 6 6\nENDPATH\nSELECTCLIPPATH\n" + kFont +
                "SETTEXTCOLOR 0x332211\nSETBKCOLOR 0x665544\nSETBKMODE 2\n" +
                RunOf("120 70", 2, "EXTTEXTOUT 120 70 0x2 0 0 10 10 2 0 \"ab\"+1\n"));
  EXPECT_EQ(device_.remembered_colour, 0x665544u);

  // Every run sets its own alignment over that of a vertical string.
  EXPECT_EQ(Drawn(String(L"a", SO_VERTICAL)),
            kFont + "SETTEXTALIGN 30\nSETTEXTCOLOR 0x332211\nSETBKMODE 1\n" +
                RunOf("120 70", 1, ByGlyph(Out("120 70", "a"))));

  // Brushes that are not solid: black on white.
  foreground_.iSolidColor = host::kNotSolid;
  EXPECT_EQ(Drawn(String(L"", 0), nullptr, &pattern),
            kFont + "SETTEXTCOLOR 0x0\nSETBKCOLOR 0xffffff\nSETBKMODE 1\n");
}

TEST_F(TextCaptureTest, PositionsInBatches_GiveARunEach) {
  auto text = String(L"abcde", SO_FLAG_DEFAULT_PLACEMENT, /*batch=*/2);
  for (int call = 0; call < 2; ++call) {  // the enumeration starts anew
    EXPECT_TRUE(Draw(&surface_, &text, &font_));
    EXPECT_EQ(TakeDrawing(), kState + RunOf("120 70", 2, Out("120 70", "ab")) +
                                 RunOf("140 72", 2, Out("140 72", "cd")) +
                                 RunOf("160 74", 1, Out("160 74", "e")));
  }
  host::FailNextCall("STROBJ_bEnum");
  EXPECT_FALSE(Draw(&surface_, &text, &font_));
  EXPECT_EQ(TakeDrawing(), kState);

  auto without_characters = String(L"ab", SO_FLAG_DEFAULT_PLACEMENT);
  without_characters.pwszOrg = nullptr;
  EXPECT_TRUE(Draw(&surface_, &without_characters, &font_));
  EXPECT_EQ(TakeDrawing(), kState + RunOf("120 70", 2, Out("120 70", "")));
}

TEST_F(TextCaptureTest, Transform_IsResetBehindTheBracketOnSuccessAndInsideOnFailure) {
  auto text = String(L"a", 0);
  const std::string opened = kOpen + "SETWORLDTRANSFORM 0.5 0 0 0.5 100 50\n";
  EXPECT_TRUE(Draw(&surface_, &text, &scaled_));
  EXPECT_EQ(TakeRecords(),
            opened + kState +
                RunOf("40 40", 1, "EXTTEXTOUT 40 40 0x0 -200 -100 200 100 1 0 \"a\"+1\n") +
                "RESTOREDC\nRESETWORLDTRANSFORM\n");

  host::FailNextCall("FONTOBJ_pifi");
  EXPECT_FALSE(Draw(&surface_, &text, &scaled_));
  EXPECT_EQ(TakeRecords(), opened + "RESETWORLDTRANSFORM\nRESTOREDC\n");

  host::FailNextCall("FONTOBJ_pifi");
  EXPECT_FALSE(Draw(&surface_, &text, &font_));
  EXPECT_EQ(TakeRecords(), kOpen + "RESTOREDC\n");

  host::FontObject flat({}, {L"Family", L"", L""}, kFlat);
  EXPECT_FALSE(Draw(&surface_, &text, &flat));
  EXPECT_EQ(TakeRecords(), kOpen + "SETWORLDTRANSFORM 1 0 2 0 0 0\n" + kState +
                               "RESETWORLDTRANSFORM\nRESTOREDC\n");
}

TEST_F(TextCaptureTest, MissingArguments_RefusedBeforeAnythingIsRecorded) {
  auto text = String(L"a", 0);
  const auto refuses = [&](SURFOBJ* surface, STROBJ* string, FONTOBJ* font) {
    SetLastError(0);
    return !Draw(surface, string, font) && GetLastError() == ERROR_INVALID_PARAMETER;
  };
  EXPECT_TRUE(refuses(nullptr, &text, &font_));
  EXPECT_TRUE(refuses(&surface_, nullptr, &font_));
  EXPECT_TRUE(refuses(&surface_, &text, nullptr));
  EXPECT_EQ(TakeRecords(), "");
  EXPECT_EQ(quillo::DrvGetGlyphMode(nullptr, nullptr), ULONG{FO_GLYPHBITS});
}

}  // namespace
}  // namespace quillo
