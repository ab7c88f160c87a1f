#include "host/emf/player.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "host/emf/played_records.h"

namespace quillo::host::emf {
namespace {

const char kThinPen[] = " | thin pen #000000";
const char kPenAndWhite[] = " | thin pen #000000 | #ffffff";

// -- Lines and shapes ----------------------------------------------------------------------------

TEST(Player, DrawingRecord_MakesItsCall) {
  const std::pair<TestRecord, std::string> cases[] = {
      {{kEmrLINETO, {7, 8}}, "Line 0,0 7,8"},
      {{kEmrPOLYLINE, {kB, kB, kB, kB, 3, 1, 2, 3, 4, 5, 6}}, "Stroke M1,2 L3,4 L5,6"},
      {{kEmrPOLYLINE16, {kB, kB, kB, kB, 2, S(1, -2), S(-3, 4)}}, "Stroke M1,-2 L-3,4"},
      {{kEmrPOLYGON, {kB, kB, kB, kB, 3, 1, 2, 3, 4, 5, 6}}, "StrokeAndFill M1,2 L3,4 L5,6 Z"},
      {{kEmrPOLYGON16, {kB, kB, kB, kB, 3, S(1, 2), S(3, 4), S(5, 6)}},
       "StrokeAndFill M1,2 L3,4 L5,6 Z"},
      {{kEmrPOLYPOLYLINE, {kB, kB, kB, kB, 2, 4, 2, 2, 1, 2, 3, 4, 5, 6, 7, 8}},
       "Stroke M1,2 L3,4 M5,6 L7,8"},
      {{kEmrPOLYPOLYLINE16, {kB, kB, kB, kB, 1, 2, 2, S(1, 2), S(3, 4)}}, "Stroke M1,2 L3,4"},
      {{kEmrPOLYPOLYGON, {kB, kB, kB, kB, 2, 5, 3, 2, 1, 2, 3, 4, 5, 6, 7, 8, 9, 9}},
       "StrokeAndFill M1,2 L3,4 L5,6 Z M7,8 L9,9 Z"},
      {{kEmrPOLYPOLYGON16, {kB, kB, kB, kB, 1, 3, 3, S(1, 2), S(3, 4), S(5, 6)}},
       "StrokeAndFill M1,2 L3,4 L5,6 Z"},
      {{kEmrPOLYBEZIER, {kB, kB, kB, kB, 4, 1, 2, 3, 4, 5, 6, 7, 8}}, "Stroke M1,2 B3,4 5,6 7,8"},
      {{kEmrPOLYBEZIER16, {kB, kB, kB, kB, 4, S(1, 2), S(3, 4), S(5, 6), S(7, 8)}},
       "Stroke M1,2 B3,4 5,6 7,8"},
      {{kEmrPOLYBEZIERTO, {kB, kB, kB, kB, 3, 3, 4, 5, 6, 7, 8}}, "Stroke M0,0 B3,4 5,6 7,8"},
      {{kEmrPOLYBEZIERTO16, {kB, kB, kB, kB, 3, S(3, 4), S(5, 6), S(7, 8)}},
       "Stroke M0,0 B3,4 5,6 7,8"},
      {{kEmrPOLYLINETO, {kB, kB, kB, kB, 1, 3, 4}}, "Stroke M0,0 L3,4"},
      {{kEmrPOLYLINETO16, {kB, kB, kB, kB, 1, S(3, 4)}}, "Stroke M0,0 L3,4"},
      {{kEmrPOLYDRAW,
        {kB, kB, kB, kB, 3, 1, 2, 3, 4, 5, 6, PT_MOVETO | PT_LINETO << 8 | (PT_LINETO | 1) << 16}},
       "Stroke M1,2 L3,4 L5,6 Z"},
      {{kEmrPOLYDRAW16, {kB, kB, kB, kB, 3, S(1, 2), S(3, 4), S(5, 6), 0x00040404}},
       "Stroke M0,0 B1,2 3,4 5,6"},
      {{kEmrRECTANGLE, {10, 20, 30, 40}}, "StrokeAndFill M30,20 L10,20 L10,40 L30,40 Z"},
      // From (0,5) on the left edge, counterclockwise to (5,10), the bottom: a quarter.
      {{kEmrARC, {0, 0, 10, 10, 0, 5, 5, 10}}, "Stroke M0,5 B0,7.75 2.25,10 5,10"},
      {{kEmrCHORD, {0, 0, 10, 10, 0, 5, 5, 10}}, "StrokeAndFill M0,5 B0,7.75 2.25,10 5,10 Z"},
      {{kEmrPIE, {10, 10, 0, 0, 0, 5, 5, 10}},  // a box the other way round
       "StrokeAndFill M5,5 L0,5 B0,7.75 2.25,10 5,10 Z"},
      {{kEmrARCTO, {0, 0, 10, 10, 0, 5, 5, 10}}, "Stroke M0,0 L0,5 B0,7.75 2.25,10 5,10"},
      {{kEmrANGLEARC, {5, 5, 5, F(180), F(90)}}, "Stroke M0,0 L0,5 B0,7.75 2.25,10 5,10"},
  };
  for (const auto& [record, call] : cases) {
    const Played played = Play({record});
    EXPECT_EQ(played.calls,
              call + (call.starts_with("StrokeAndFill") ? kPenAndWhite : kThinPen) + "\n")
        << RecordName(record.type);
    EXPECT_EQ(played.faults, "") << RecordName(record.type);
  }
}

TEST(Player, EveryTruncationOfEveryRecord_DrawsNothingOutsideItsBytes) {
  // Arrays and offsets of this record lie where the payload says; cut short, it must be refused.
  const std::vector<TestRecord> records = {
      {kEmrPOLYLINE, {kB, kB, kB, kB, 3, 1, 2, 3, 4, 5, 6}},
      {kEmrPOLYPOLYGON16, {kB, kB, kB, kB, 1, 3, 3, S(1, 2), S(3, 4), S(5, 6)}},
      {kEmrPOLYDRAW, {kB, kB, kB, kB, 1, 1, 2, PT_MOVETO}},
      {kEmrEXTSELECTCLIPRGN, {48, RGN_COPY, 32, 1, 1, 16, 0, 0, 9, 9, 0, 0, 9, 9}},
      {kEmrPAINTRGN, {kB, kB, kB, kB, 48, 32, 1, 1, 16, 0, 0, 9, 9, 0, 0, 9, 9}},
      {kEmrCREATEPALETTE, {1, 0x300 | 2 << 16, 5, 6}},
      {kEmrEXTCREATEPEN, {1, 0, 0, 0, 0, PS_USERSTYLE, 1, 0, 0, 0, 2, 3, 4}},
  };
  for (const TestRecord& whole : records) {
    EXPECT_EQ(Play({whole}).faults, "") << RecordName(whole.type);
    for (size_t size = 0; size < whole.payload.size(); ++size) {
      TestRecord cut = whole;
      cut.payload.resize(size);
      const Played played = Play({cut});
      EXPECT_EQ(played.calls, "") << RecordName(whole.type) << " " << size;
      EXPECT_NE(played.faults, "") << RecordName(whole.type) << " " << size;
    }
  }
}

TEST(Player, AbsurdCounts_LeaveAFault) {
  const std::vector<TestRecord> records = {
      {kEmrPOLYLINE, {kB, kB, kB, kB, 0xFFFFFFFF, 1, 2, 3, 4}},
      {kEmrPOLYBEZIER, {kB, kB, kB, kB, 3, 1, 2, 3, 4, 5, 6}},
      {kEmrPOLYBEZIERTO, {kB, kB, kB, kB, 2, 1, 2, 3, 4}},
      {kEmrPOLYPOLYGON, {kB, kB, kB, kB, 2, 2, 0xFFFFFFFF, 3, 1, 2, 3, 4}},
      {kEmrPOLYDRAW, {kB, kB, kB, kB, 2, 1, 2, 3, 4, 0x0404}},
      {kEmrANGLEARC, {0, 0, 5, F(NAN), F(90)}},
      {kEmrSELECTOBJECT, {7}},
      {kEmrSELECTOBJECT, {kStock | 99}},
      {kEmrDELETEOBJECT, {7}},
      {kEmrRESTOREDC, {N(-1)}},
      {kEmrRESTOREDC, {N(INT32_MIN)}},
      {kEmrSETROP2, {17}},
      {kEmrSETWORLDTRANSFORM, {F(0), F(0), F(0), F(0), F(0), F(0)}},
      {kEmrMODIFYWORLDTRANSFORM, {F(1), F(0), F(0), F(1), F(0), F(0), 9}},
      {kEmrEXTSELECTCLIPRGN, {48, RGN_COPY, 32, 1, 0xFFFFFFFF, 16, 0, 0, 9, 9, 0, 0, 9, 9}},
      {kEmrEXTSELECTCLIPRGN, {0, RGN_AND}},
      {kEmrCREATEBRUSHINDIRECT, {1, BS_HATCHED, 0, 12}},
      {250, {}},
  };
  for (const TestRecord& record : records) {
    const Played played = Play({record});
    EXPECT_EQ(played.calls, "");
    EXPECT_NE(played.faults.find("record 2 (" + RecordName(record.type) + "): "), std::string::npos)
        << RecordName(record.type) << ": " << played.faults;
  }
}

// -- State ---------------------------------------------------------------------------------------

const TestRecord kLine = {kEmrLINETO, {10, 20}};
const TestRecord kBox = {kEmrRECTANGLE, {1, 2, 3, 4}};

TEST(Player, Transforms_MapToThePage) {
  const std::vector<std::pair<std::vector<TestRecord>, std::string>> cases = {
      {{}, "Line 0,0 10,20"},
      {{{kEmrSETWINDOWORGEX, {1, 2}}}, "Line -1,-2 9,18"},
      {{{kEmrSETVIEWPORTORGEX, {1, 2}}}, "Line 1,2 11,22"},
      {{{kEmrSETMAPMODE, {8}}, {kEmrSETWINDOWEXTEX, {10, 10}}, {kEmrSETVIEWPORTEXTEX, {20, 5}}},
       "Line 0,0 20,10"},
      {{{kEmrSETMAPMODE, {8}}, {kEmrSCALEWINDOWEXTEX, {2, 1, 4, 1}}}, "Line 0,0 5,5"},
      {{{kEmrSETMAPMODE, {8}}, {kEmrSCALEVIEWPORTEXTEX, {2, 1, 4, 1}}}, "Line 0,0 20,80"},
      {{{kEmrSETWORLDTRANSFORM, {F(0), F(1), F(-1), F(0), F(5), F(0)}}}, "Line 5,0 -15,10"},
      {{{kEmrSETWORLDTRANSFORM, {F(2), F(0), F(0), F(2), F(0), F(0)}},
        {kEmrMODIFYWORLDTRANSFORM, {F(1), F(0), F(0), F(1), F(3), F(0), MWT_LEFTMULTIPLY}}},
       "Line 6,0 26,40"},
      {{{kEmrSETWORLDTRANSFORM, {F(2), F(0), F(0), F(2), F(0), F(0)}},
        {kEmrMODIFYWORLDTRANSFORM, {F(1), F(0), F(0), F(1), F(3), F(0), MWT_RIGHTMULTIPLY}}},
       "Line 3,0 23,40"},
      {{{kEmrSETWORLDTRANSFORM, {F(2), F(0), F(0), F(2), F(0), F(0)}},
        {kEmrMODIFYWORLDTRANSFORM, {F(9), F(9), F(9), F(9), F(9), F(9), MWT_IDENTITY}}},
       "Line 0,0 10,20"},
      {{{kEmrSAVEDC, {}},
        {kEmrSETWINDOWORGEX, {1, 2}},
        {kEmrMOVETOEX, {7, 7}},
        {kEmrRESTOREDC, {N(-1)}}},
       "Line 0,0 10,20"},
      {{{kEmrSAVEDC, {}}, {kEmrSETWINDOWORGEX, {1, 2}}, {kEmrSAVEDC, {}}, {kEmrRESTOREDC, {1}}},
       "Line 0,0 10,20"},
  };
  for (auto [records, call] : cases) {
    records.push_back(kLine);
    EXPECT_EQ(LastCall(records), call + kThinPen);
  }
  EXPECT_EQ(LastCall({{kEmrSETWINDOWORGEX, {1, 2}}, kLine}, {3, 0, 0, 2, 100, 50}),
            std::string("Line 97,46 127,86") + kThinPen + " | origin 100,50");
}

TEST(Player, PensAndBrushes_AreDescribed) {
  const TestRecord white_pen = {kEmrSELECTOBJECT, {kStock | WHITE_PEN}};
  const TestRecord select = {kEmrSELECTOBJECT, {1}};
  const std::vector<std::pair<std::vector<TestRecord>, std::string>> cases = {
      {{white_pen}, "StrokeAndFill|thin pen #ffffff | #ffffff"},
      {{{kEmrSELECTOBJECT, {kStock | NULL_PEN}}}, "Fill|#ffffff"},
      {{{kEmrSELECTOBJECT, {kStock | NULL_BRUSH}}}, "Stroke|thin pen #000000"},
      {{{kEmrSELECTOBJECT, {kStock | LTGRAY_BRUSH}}}, "StrokeAndFill|thin pen #000000 | #c0c0c0"},
      {{{kEmrCREATEPEN, {1, PS_SOLID, 5, 0, RGB(1, 2, 3)}}, select},
       "StrokeAndFill|pen #010203 width 5 | #ffffff"},
      // A deleted object stays selected.
      {{{kEmrCREATEPEN, {1, PS_SOLID, 0, 0, RGB(1, 2, 3)}}, select, {kEmrDELETEOBJECT, {1}}},
       "StrokeAndFill|thin pen #010203 | #ffffff"},
      {{{kEmrCREATEPEN, {1, PS_DASH, 0, 0, 0}}, select},
       "StrokeAndFill|thin pen #000000 dashes 6/2 | #ffffff"},
      {{{kEmrCREATEPEN, {1, PS_DASHDOT, 2, 0, 0}}, select},
       "StrokeAndFill|pen #000000 width 2 dashes 6/2/2/2 | #ffffff"},
      {{{kEmrSETMITERLIMIT, {F(3)}},
        {kEmrEXTCREATEPEN,
         {1, 0, 0, 0, 0, PS_GEOMETRIC | PS_USERSTYLE | PS_JOIN_MITER | PS_ENDCAP_FLAT, 4,
          BS_HATCHED, RGB(255, 0, 0), HS_CROSS, 2, 7, 3}},
        select},
       "StrokeAndFill|pen hatch 4 #ff0000 on #ffffff width 4 miter 3 butt dashes 7/3 | #ffffff"},
      {{{kEmrEXTCREATEPEN,
         {1, 0, 0, 0, 0, PS_GEOMETRIC | PS_USERSTYLE, 4, BS_SOLID, 0, 0, 2, 0, 0}},
        select},
       "StrokeAndFill|pen #000000 width 4 | #ffffff"},
      {{{kEmrEXTCREATEPEN, {1, 0, 0, 0, 0, PS_ALTERNATE, 1, BS_SOLID, 0, 0, 0}}, select},
       "StrokeAndFill|thin pen #000000 alternate | #ffffff"},
      {{{kEmrSETBKCOLOR, {RGB(9, 9, 9)}},
        {kEmrCREATEBRUSHINDIRECT, {1, BS_HATCHED, RGB(0, 0, 255), HS_DIAGCROSS}},
        select},
       "StrokeAndFill|thin pen #000000 | hatch 5 #0000ff on #090909"},
      {{{kEmrSETPOLYFILLMODE, {WINDING}},
        {kEmrSETROP2, {R2_XORPEN}},
        {kEmrSETBKMODE, {TRANSPARENT}}},
       "StrokeAndFill|thin pen #000000 | #ffffff winding | rop2 7 | transparent"},
      {{{kEmrSETBRUSHORGEX, {3, 4}}}, "StrokeAndFill|thin pen #000000 | #ffffff | origin 3,4"},
      {{{kEmrCREATEPALETTE, {1, 0x300 | 2 << 16, RGB(1, 2, 3), RGB(4, 5, 6)}},
        {kEmrSELECTPALETTE, {1}},
        {kEmrCREATEBRUSHINDIRECT, {2, BS_SOLID, 0x01000001, 0}},
        {kEmrSELECTOBJECT, {2}}},
       "StrokeAndFill|thin pen #000000 | #040506"},
      {{{kEmrSETROP2, {R2_NOP}}}, ""},
  };
  for (auto [records, call] : cases) {
    records.push_back(kBox);
    const size_t name = call.find('|');
    if (name != call.npos) call.replace(name, 1, " M3,2 L1,2 L1,4 L3,4 Z | ");
    EXPECT_EQ(LastCall(records), call);
  }
}

TEST(Player, PenWidths_FollowTheTransformExceptCosmetic) {
  const auto pen = [](uint32_t style, uint32_t width) {
    return TestRecord{kEmrEXTCREATEPEN, {1, 0, 0, 0, 0, style, width, BS_SOLID, 0, 0, 0}};
  };
  const TestRecord simple = {kEmrCREATEPEN, {1, PS_SOLID, 1, 0, 0}};
  const Transform six{6, 0, 0, 6, 0, 0}, turned{0, 6, -6, 0, 0, 0};
  const struct {
    TestRecord pen;
    Transform to_page;
    const char* call;
  } cases[] = {
      {pen(PS_GEOMETRIC, 2), six, "Line 0,0 60,120 | pen #000000 width 12"},
      {pen(PS_GEOMETRIC, 2), turned, "Line 0,0 -120,60 | pen #000000 width 12"},
      {simple, six, "Line 0,0 60,120 | pen #000000 width 6"},
      {simple, {}, "Line 0,0 10,20 | thin pen #000000"},
      {pen(PS_COSMETIC, 1), six, "Line 0,0 60,120 | thin pen #000000"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(LastCall({c.pen, {kEmrSELECTOBJECT, {1}}, kLine}, c.to_page), c.call);
  }
}

TEST(Player, StateOfShapes_ChangesTheirOutline) {
  EXPECT_EQ(LastCall({{kEmrCREATEPEN, {1, PS_INSIDEFRAME, 4, 0, 0}},
                      {kEmrSELECTOBJECT, {1}},
                      {kEmrRECTANGLE, {0, 0, 20, 3}}}),
            "StrokeAndFill M18,1.5 L2,1.5 L2,1.5 L18,1.5 Z | pen #000000 width 4 | #ffffff");
  EXPECT_EQ(
      LastCall({{kEmrSETARCDIRECTION, {AD_CLOCKWISE}}, {kEmrARC, {0, 0, 10, 10, 5, 10, 0, 5}}}),
      std::string("Stroke M5,10 B2.25,10 0,7.75 0,5") + kThinPen);
}

// -- Paths ---------------------------------------------------------------------------------------

const TestRecord kBegin = {kEmrBEGINPATH, {}};
const TestRecord kEnd = {kEmrENDPATH, {}};

TEST(Player, PathBracket_CollectsFigures) {
  const std::vector<TestRecord> figures = {
      {kEmrMOVETOEX, {1, 1}},
      {kEmrLINETO, {2, 1}},
      {kEmrLINETO, {2, 2}},
      {kEmrCLOSEFIGURE, {}},
      {kEmrMOVETOEX, {5, 5}},
      {kEmrPOLYLINETO, {kB, kB, kB, kB, 1, 6, 6}},
      {kEmrPOLYLINE, {kB, kB, kB, kB, 2, 7, 7, 8, 8}},
      {kEmrLINETO, {9, 9}},  // goes on from the current position, not from the polyline
  };
  const std::string text = " M1,1 L2,1 L2,2 Z M5,5 L6,6 M7,7 L8,8 M6,6 L9,9 | ";
  const std::pair<uint32_t, std::string> ends[] = {
      {kEmrSTROKEPATH, "Stroke" + text + "thin pen #000000"},
      {kEmrFILLPATH, "Fill" + text + "#ffffff"},
      {kEmrSTROKEANDFILLPATH, "StrokeAndFill" + text + "thin pen #000000 | #ffffff"},
  };
  for (const auto& [type, call] : ends) {
    std::vector<TestRecord> records = {kBegin};
    records.insert(records.end(), figures.begin(), figures.end());
    records.push_back(kEnd);
    records.push_back({type, {kB, kB, kB, kB}});
    records.push_back({type, {kB, kB, kB, kB}});  // the path is gone
    EXPECT_EQ(Play(records).calls, call + "\n");
  }
  EXPECT_EQ(Play({kBegin, kLine, {kEmrABORTPATH, {}}, {kEmrSTROKEPATH, {kB, kB, kB, kB}}}).calls,
            "");
}

TEST(Player, FlattenAndWiden_ChangeThePath) {
  const TestRecord curve = {kEmrPOLYBEZIER, {kB, kB, kB, kB, 4, 0, 0, 0, 10, 10, 10, 10, 0}};
  const TestRecord stroke = {kEmrSTROKEPATH, {kB, kB, kB, kB}};
  EXPECT_EQ(LastCall({kBegin, curve, kEnd, {kEmrFLATTENPATH, {}}, stroke}).find('B'),
            std::string::npos);
  // A horizontal line with flat ends becomes a box as high as the pen is wide.
  const std::string widened = LastCall(
      {{kEmrEXTCREATEPEN, {1, 0, 0, 0, 0, PS_GEOMETRIC | PS_ENDCAP_FLAT, 4, BS_SOLID, 0, 0, 0}},
       {kEmrSELECTOBJECT, {1}},
       kBegin,
       {kEmrMOVETOEX, {10, 10}},
       {kEmrLINETO, {30, 10}},
       kEnd,
       {kEmrWIDENPATH, {}},
       {kEmrFILLPATH, {kB, kB, kB, kB}}});
  for (const char* corner : {"10,8", "30,8", "30,12", "10,12"}) {
    EXPECT_NE(widened.find(corner), std::string::npos) << widened;
  }
}

// -- Clipping and regions ------------------------------------------------------------------------

/// `before`, and a region of the rectangle (0,0)-(9,9) and one beside it.
TestRecord WithRegion(uint32_t type, std::vector<uint32_t> before) {
  for (const uint32_t word : {32, 1, 2, 32, 0, 0, 0, 0, 0, 0, 9, 9, 20, 0, 29, 9}) {
    before.push_back(word);
  }
  return {type, before};
}

TEST(Player, ClipRecords_ChangeTheClip) {
  const TestRecord clip = {kEmrINTERSECTCLIPRECT, {10, 10, 50, 50}};
  const Transform twice{2, 0, 0, 2, 0, 0};
  const std::vector<std::pair<std::vector<TestRecord>, std::string>> cases = {
      {{clip}, "clip (20,20)-(100,100)"},
      {{clip, {kEmrINTERSECTCLIPRECT, {0, 0, 20, 20}}}, "clip (20,20)-(40,40)"},
      {{clip, {kEmrEXCLUDECLIPRECT, {0, 0, 60, 20}}}, "clip (20,40)-(100,100)"},
      {{clip, {kEmrEXCLUDECLIPRECT, {20, 20, 30, 30}}}, "clip inside (20,20)-(100,100)"},
      {{clip, {kEmrOFFSETCLIPRGN, {5, N(-5)}}}, "clip (30,10)-(110,90)"},
      {{clip, {kEmrSAVEDC, {}}, {kEmrINTERSECTCLIPRECT, {0, 0, 1, 1}}, {kEmrRESTOREDC, {N(-1)}}},
       "clip (20,20)-(100,100)"},
      {{clip, {kEmrINTERSECTCLIPRECT, {0, 0, 1, 1}}}, "no clip left"},
      {{clip, {kEmrEXTSELECTCLIPRGN, {0, RGN_COPY}}}, ""},
      // In pixels of the reference device, not in logical units.
      {{{kEmrSETWINDOWORGEX, {100, 100}},
        WithRegion(kEmrEXTSELECTCLIPRGN, {64, RGN_COPY}),
        {kEmrSETWINDOWORGEX, {0, 0}}},
       "clip inside (0,0)-(58,18)"},
      {{clip, WithRegion(kEmrEXTSELECTCLIPRGN, {64, RGN_OR})}, "clip inside (0,0)-(100,100)"},
      {{clip, {kEmrSETMETARGN, {}}, {kEmrEXTSELECTCLIPRGN, {0, RGN_COPY}}},
       "clip (20,20)-(100,100)"},
      {{clip, {kEmrSETMETARGN, {}}, {kEmrINTERSECTCLIPRECT, {0, 0, 20, 20}}},
       "clip (20,20)-(40,40)"},
      {{kBegin, {kEmrRECTANGLE, {10, 10, 20, 20}}, kEnd, {kEmrSELECTCLIPPATH, {RGN_COPY}}},
       "clip (20,20)-(40,40)"},
      {{clip, kBegin, {kEmrRECTANGLE, {0, 0, 20, 100}}, kEnd, {kEmrSELECTCLIPPATH, {RGN_DIFF}}},
       "clip (40,20)-(100,100)"},
  };
  for (auto [records, text] : cases) {
    records.push_back(kLine);
    EXPECT_EQ(LastCall(records, twice),
              std::string("Line 0,0 20,40") + kThinPen + (text.empty() ? "" : " | " + text));
  }
}

TEST(Player, RegionRecords_PaintInLogicalUnits) {
  const TestRecord origin = {kEmrSETWINDOWORGEX, {N(-100), 0}};
  const TestRecord gray = {kEmrSELECTOBJECT, {kStock | GRAY_BRUSH}};
  const std::string area = "Paint inside (100,0)-(129,9) | ";
  const std::pair<TestRecord, std::string> cases[] = {
      {WithRegion(kEmrFILLRGN, {kB, kB, kB, kB, 64, kStock | BLACK_BRUSH}), area + "#000000"},
      {WithRegion(kEmrFRAMERGN, {kB, kB, kB, kB, 64, kStock | BLACK_BRUSH, 2, 2}),
       area + "#000000"},
      {WithRegion(kEmrPAINTRGN, {kB, kB, kB, kB, 64}), area + "#808080"},
      {WithRegion(kEmrINVERTRGN, {kB, kB, kB, kB, 64}), area + "#000000 | rop2 6"},
  };
  for (const auto& [record, call] : cases) EXPECT_EQ(LastCall({origin, gray, record}), call);
}

// -- Bounds --------------------------------------------------------------------------------------

TEST(Player, RecordsWithoutAHandler_AreCounted) {
  const Played played =
      Play({{kEmrGLSRECORD, {}}, {kEmrGLSRECORD, {}}, {kEmrEXTFLOODFILL, {0, 0, 0, 0}}});
  EXPECT_EQ(played.result.not_carried,
            (std::map<std::string, int>{{"EMR_GLSRECORD", 2}, {"EMR_EXTFLOODFILL", 1}}));
  EXPECT_EQ(played.faults, "");
}

TEST(Player, WhatLeadsFar_IsDrawnAsFarAsItIsNear) {
  EXPECT_EQ(LastCall({{kEmrLINETO, {0x7FFFFFFF, 0}}}),
            std::string("Stroke M0,0 L65536,0") + kThinPen);
  EXPECT_EQ(Play({{kEmrPOLYGON, {kB, kB, kB, kB, 3, 0, 0, 1000000, 0, 1000000, 1000000}}}).calls,
            "Fill M0,0 L65536,0 L65536,65536 Z | #ffffff\n"
            "Stroke M0,0 L65536,0 M65536,65536 L0,0 | thin pen #000000\n");
}

TEST(Player, EndlessWork_EndsWithAFault) {
  // A clip of 2000 squares, and 5000 lines that each take it along.
  std::vector<uint32_t> region = {32 + 16 * 2000, RGN_COPY, 32, 1, 2000, 16 * 2000, 0, 0, 9, 9};
  for (uint32_t i = 0; i < 2000; ++i) {
    region.insert(region.end(), {i % 50 * 4, i / 50 * 4, i % 50 * 4 + 2, i / 50 * 4 + 2});
  }
  std::vector<TestRecord> records(5001, kLine);
  records[0] = {kEmrEXTSELECTCLIPRGN, region};
  const Played played = Play(records);
  EXPECT_NE(played.faults.find("asks for too much work"), std::string::npos);
  EXPECT_LT(std::count(played.calls.begin(), played.calls.end(), '\n'), 4000);

  // A polygon whose edges cross the whole sheet a thousand times.
  std::vector<uint32_t> zigzag = {kB, kB, kB, kB, 1000};
  for (uint32_t i = 0; i < 1000; ++i) zigzag.insert(zigzag.end(), {i, i % 2 * 6000});
  EXPECT_NE(Play({{kEmrPOLYGON, zigzag}}).faults.find("too intricate"), std::string::npos);
}

TEST(Player, SavedStates_AreBounded) {
  std::vector<TestRecord> records(10001, {kEmrSAVEDC, {}});
  EXPECT_NE(Play(records).faults.find("record 10002 (EMR_SAVEDC): too many"), std::string::npos);
}

}  // namespace
}  // namespace quillo::host::emf
