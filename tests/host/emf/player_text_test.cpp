#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "host/emf/played_records.h"

namespace quillo::host::emf {
namespace {

constexpr uint32_t kCompatible = 1, kAdvanced = 2;

/// ExtTextOut of "ab" at (10, 20) with advances 7 and 9.
TestRecord TextRecord(uint32_t type, uint32_t options = 0, uint32_t mode = kCompatible,
                      uint32_t two_characters = S('a', 'b')) {
  const std::vector<uint32_t> payload = {kB,
                                         kB,
                                         kB,
                                         kB,
                                         mode,
                                         F(1),
                                         F(1),  //
                                         10,
                                         20,
                                         2,
                                         76,
                                         options,  // place and count of the text
                                         1,
                                         2,
                                         30,
                                         40,  // rectangle
                                         80,  // place of the advances
                                         two_characters,
                                         7,
                                         9};
  return {type, payload};
}

const std::string kPlain = "Text 'ab' at 10,20 dx 7/9 | #000000";

TEST(PlayerText, EachRecord_DrawsItsLines) {
  const std::pair<TestRecord, std::string> cases[] = {
      {TextRecord(kEmrEXTTEXTOUTW), kPlain},
      {TextRecord(kEmrEXTTEXTOUTA, 0, kCompatible, 'a' | 'b' << 8), kPlain},
      {TextRecord(kEmrEXTTEXTOUTW, ETO_OPAQUE), kPlain + " | on #ffffff (1,2)-(30,40)"},
      {TextRecord(kEmrEXTTEXTOUTW, ETO_CLIPPED), kPlain + " | clip (1,2)-(30,40)"},
      {TextRecord(kEmrEXTTEXTOUTW, ETO_OPAQUE | 0x100), kPlain},  // no rectangle after all
      {{kEmrSMALLTEXTOUT, {10, 20, 2, 0x100 | 0x200, kCompatible, F(1), F(1), 'a' | 'b' << 8}},
       "Text 'ab' at 10,20 | #000000"},
      {{kEmrSMALLTEXTOUT,
        {10, 20, 2, ETO_CLIPPED, kCompatible, F(1), F(1), 1, 2, 30, 40, S('a', 'b')}},
       "Text 'ab' at 10,20 | #000000 | clip (1,2)-(30,40)"},
      {{kEmrPOLYTEXTOUTW,
        {kB, kB, kB, kB,     kCompatible, F(1), F(1), 1,  //
         10, 20, 2,  76 + 4, 0,           0,    0,    0, 0, 84, S('a', 'b'), 7, 9}},
       kPlain},
  };
  for (const auto& [record, call] : cases) {
    const Played played = Play({record});
    EXPECT_EQ(played.calls, call + "\n") << RecordName(record.type);
    EXPECT_EQ(played.faults, "") << RecordName(record.type);
  }
}

TEST(PlayerText, StateOfTheDc_GoesAlong) {
  const TestRecord text = TextRecord(kEmrEXTTEXTOUTW);
  const TestRecord advanced = TextRecord(kEmrEXTTEXTOUTW, 0, kAdvanced);
  const TestRecord upside_down[] = {{kEmrSETMAPMODE, {MM_ANISOTROPIC}},
                                    {kEmrSETVIEWPORTEXTEX, {2, N(-3)}}};
  const TestRecord turned = {kEmrSETWORLDTRANSFORM, {F(0), F(1), F(-1), F(0), F(0), F(0)}};
  const std::pair<std::vector<TestRecord>, std::string> cases[] = {
      {{{kEmrSETTEXTCOLOR, {RGB(1, 2, 3)}}, {kEmrSETBKMODE, {TRANSPARENT}}, text},
       "Text 'ab' at 10,20 dx 7/9 | #010203 | transparent"},
      {{{kEmrSETTEXTALIGN, {TA_BASELINE | TA_CENTER}}, text},
       "Text 'ab' at 10,20 align 30 dx 7/9 | #000000"},
      {{{kEmrSETTEXTJUSTIFICATION, {6, 3}}, text}, "Text 'ab' at 10,20 dx 7/9 spaces 2 | #000000"},
      // The compatible mode never mirrors text, the advanced one carries the whole transform.
      {{upside_down[0], upside_down[1], text}, "Text 'ab' at 20,-60 by 2,0,0,3 dx 7/9 | #000000"},
      {{upside_down[0], upside_down[1], advanced},
       "Text 'ab' at 20,-60 by 2,0,0,-3 dx 7/9 | #000000"},
      {{turned, text}, "Text 'ab' at -20,10 by 0,1,-1,0 dx 7/9 | #000000"},
      // The current position follows the line, 100 units for each.
      {{{kEmrMOVETOEX, {1, 1}}, {kEmrSETTEXTALIGN, {TA_UPDATECP}}, text, text},
       "Text 'ab' at 101,1 align 1 dx 7/9 | #000000"},
      {{{kEmrMOVETOEX, {1, 1}}, {kEmrSETTEXTALIGN, {TA_UPDATECP | TA_RIGHT}}, text, text},
       "Text 'ab' at -99,1 align 3 dx 7/9 | #000000"},
  };
  for (const auto& [records, call] : cases) EXPECT_EQ(LastCall(records), call);
}

TEST(PlayerText, StepsAcrossTheLine_MoveThePosition) {
  TestRecord text = TextRecord(kEmrEXTTEXTOUTW, ETO_PDY);
  text.payload.insert(text.payload.end(), {N(5), N(6)});  // pairs: 7 along, 9 up; 5 along, 6 up
  EXPECT_EQ(LastCall({{kEmrSETTEXTALIGN, {TA_UPDATECP}}, text, text}),
            "Text 'ab' at 100,-15 align 1 dx 7/5 dy 9/6 | #000000");
}

TEST(PlayerText, InAPath_AddsTheGlyphsOutlines) {
  const Played played = Play({{kEmrBEGINPATH, {}},
                              TextRecord(kEmrEXTTEXTOUTW, ETO_OPAQUE),
                              {kEmrENDPATH, {}},
                              {kEmrFILLPATH, {kB, kB, kB, kB}}});
  EXPECT_TRUE(played.calls.starts_with("Fill M")) << played.calls;
  // Two contours for each of the letters, and both letters near the reference point.
  EXPECT_EQ(std::count(played.calls.begin(), played.calls.end(), 'Z'), 4) << played.calls;
  EXPECT_NE(played.calls.find(" M1"), std::string::npos) << played.calls;
}

TEST(PlayerText, CodePages_BecomeUtf16) {
  std::vector<uint32_t> font = {1, 0, 0, 0, 0, 400, uint32_t{RUSSIAN_CHARSET} << 24};
  font.resize(1 + 23);
  // Cyrillic small letters a and be.
  const Played played = Play({{kEmrEXTCREATEFONTINDIRECTW, font},
                              {kEmrSELECTOBJECT, {1}},
                              TextRecord(kEmrEXTTEXTOUTA, 0, kCompatible, 0xE0 | 0xE1 << 8)});
  EXPECT_EQ(played.calls,
            "Text '\x30\x31' at 10,20 dx 7/9 | #000000\n");  // low bytes of U+0430, U+0431
}

TEST(PlayerText, GlyphIndexes_NeedTheirFontOrItsOrder) {
  std::vector<uint32_t> font = {1, N(-20), 0, 0, 0, 400, 0, 0};
  for (const char16_t* name = u"Nowhere Sans"; name[0] != 0; name += 2) {
    font.push_back(name[0] | static_cast<uint32_t>(name[1]) << 16);
  }
  font.resize(1 + 23);
  const TestRecord text = TextRecord(kEmrEXTTEXTOUTW, ETO_GLYPH_INDEX, kCompatible, S(68, 69));
  for (const bool assumed : {true, false}) {
    const Played played = Play({{kEmrEXTCREATEFONTINDIRECTW, font}, {kEmrSELECTOBJECT, {1}}, text},
                               {}, {assumed ? GlyphOrder::kAssume : GlyphOrder::kDrop});
    const FontUse& use = played.result.fonts.at(L"Nowhere Sans");
    EXPECT_TRUE(use.substituted);
    EXPECT_EQ(use.assumed_glyphs, assumed ? 2 : 0);
    EXPECT_EQ(use.dropped_glyphs, assumed ? 0 : 2);
    EXPECT_EQ(played.calls, assumed ? "Text 68 69 at 10,20 dx 7/9 | #000000\n" : "");
  }
}

TEST(PlayerText, DamagedText_LeavesAFault) {
  const auto with = [](size_t word, uint32_t value) {
    TestRecord record = TextRecord(kEmrEXTTEXTOUTW);
    record.payload[word] = value;
    return record;
  };
  const TestRecord cases[] = {with(9, 0x80000001),   // count
                              with(10, 0xFFFFFFFF),  // place of the text
                              with(16, 84)};         // place of the advances
  for (const TestRecord& record : cases) {
    const Played played = Play({record});
    EXPECT_EQ(played.calls, "");
    EXPECT_NE(played.faults.find("is too short for what it announces"), std::string::npos);
  }
  // Half a surrogate pair is replaced.
  EXPECT_NE(Play({TextRecord(kEmrEXTTEXTOUTW, 0, kCompatible, 'a' | 0xD8000000)})
                .faults.find("half a surrogate pair"),
            std::string::npos);
}

}  // namespace
}  // namespace quillo::host::emf
