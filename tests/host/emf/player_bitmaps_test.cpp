#include <gtest/gtest.h>
#include <string>

#include "host/emf/played_records.h"

namespace quillo::host::emf {
namespace {

constexpr uint32_t kCopy = SRCCOPY;

/// A DIB of 4 x 2 pixels and 24 bits.
std::vector<uint32_t> Dib24() {
  return {40,     4, 2, 1 | 24 << 16,
          BI_RGB, 0, 0, 0,
          0,      0,  // header
          1,      2, 3, 4,
          5,      6};  // 2 rows of 12 bytes
}

/// A DIB of 8 x 1 pixels and 1 bit: black and red.
std::vector<uint32_t> Dib1() {
  return {40,         8,          1, 1 | 1 << 16, BI_RGB, 0, 0, 0, 0, 0,  // header
          0x00000000, 0x00FF0000,                                         // colour table
          0x0000000F};                                                    // a row
}

std::vector<uint32_t> Join(std::initializer_list<std::vector<uint32_t>> parts) {
  std::vector<uint32_t> whole;
  for (const auto& part : parts) whole.insert(whole.end(), part.begin(), part.end());
  return whole;
}

/// offset and size of header and bits of a DIB that begins behind `words` payload words.
std::vector<uint32_t> Place(size_t words, const std::vector<uint32_t>& dib, uint32_t info_bytes) {
  const auto start = static_cast<uint32_t>(8 + words * 4);
  return {start, info_bytes, start + info_bytes,
          static_cast<uint32_t>(dib.size() * 4) - info_bytes};
}

// The fields behind target and operation that blits from a DC share, for a source at (1, 0).
std::vector<uint32_t> DeviceSource(float scale = 1) {
  return {1, 0, F(scale), F(0), F(0), F(scale), F(0), F(0), 0xFFFFFF, DIB_RGB_COLORS};
}

TestRecord BitBltRecord(uint32_t rop, float source_scale = 1) {
  return {kEmrBITBLT, Join({{kB, kB, kB, kB, 10, 20, 3, 2, rop},
                            DeviceSource(source_scale),
                            Place(23, Dib24(), 40),
                            Dib24()})};
}

/// StretchBlt, AlphaBlend and TransparentBlt: the same, and the source's size at the end.
TestRecord StretchRecord(uint32_t type, uint32_t operation, int32_t width, int32_t height) {
  return {type, Join({{kB, kB, kB, kB, 10, 20, 6, 4, operation},
                      DeviceSource(),
                      Place(25, Dib24(), 40),
                      {N(width), N(height)},
                      Dib24()})};
}

TestRecord StretchDibitsRecord(uint32_t rop, const std::vector<uint32_t>& dib,
                               uint32_t info_bytes = 40) {
  return {kEmrSTRETCHDIBITS, Join({{kB, kB, kB, kB, 10, 20, 1, 0, 3, 1},
                                   Place(18, dib, info_bytes),
                                   {DIB_RGB_COLORS, rop, 30, 10},
                                   dib})};
}

TestRecord SetDibitsRecord(uint32_t start_row, uint32_t rows) {
  return {kEmrSETDIBITSTODEVICE, Join({{kB, kB, kB, kB, 10, 20, 0, 0, 4, 2},
                                       Place(17, Dib24(), 40),
                                       {DIB_RGB_COLORS, start_row, rows},
                                       Dib24()})};
}

TestRecord MaskBltRecord() {
  return {kEmrMASKBLT, Join({{kB, kB, kB, kB, 10, 20, 3, 2, 0xAACC0020},
                             DeviceSource(),
                             Place(30, Dib24(), 40),
                             {5, 0, DIB_RGB_COLORS},
                             Place(30 + Dib24().size(), Dib1(), 48),
                             Dib24(),
                             Dib1()})};
}

TestRecord PlgBltRecord() {
  return {kEmrPLGBLT, Join({{kB, kB, kB, kB, 0, 0, 30, 0, 0, 20, 1, 0, 3, 2},
                            {F(1), F(0), F(0), F(1), F(0), F(0), 0xFFFFFF, DIB_RGB_COLORS},
                            Place(33, Dib24(), 40),
                            {0, 0, 0, 0, 0, 0, 0},  // no mask
                            Dib24()})};
}

TestRecord GradientRecord(uint32_t mode) {
  return {kEmrGRADIENTFILL,
          {kB, kB, kB, kB, 2, 1, mode,  //
           0, 0, S(0, 0), S(0, 0),      // corner, colours
           10, 5, S(-1, 0), S(0, 0), 0, 1}};
}

const Transform kTwice{2, 0, 0, 2, 0, 0};

TEST(PlayerBitmaps, EachRecord_MakesItsBlit) {
  const std::pair<TestRecord, std::string> cases[] = {
      {BitBltRecord(kCopy), "StretchBlt (20,40)-(26,44) rop 204 | 4x2x24 from (1,0)-(4,2) mode 1"},
      // The source's own transform.
      {BitBltRecord(kCopy, 0.5),
       "StretchBlt (20,40)-(26,44) rop 204 | 4x2x24 from (1,0)-(2,1) mode 1"},
      {BitBltRecord(PATCOPY), "BitBlt (20,40)-(26,44) rop 240 | #ffffff"},
      {BitBltRecord(0x00AA0029), ""},
      {StretchRecord(kEmrSTRETCHBLT, kCopy, 3, 2),
       "StretchBlt (20,40)-(32,48) rop 204 | 4x2x24 from (1,0)-(4,2) mode 1"},
      // Mirrored in the source: mirrored in the target instead.
      {StretchRecord(kEmrSTRETCHBLT, kCopy, -1, 2),
       "StretchBlt (32,40)-(20,48) rop 204 | 4x2x24 from (0,0)-(1,2) mode 1"},
      // Row 0 from the bottom is the lower one.
      {StretchDibitsRecord(kCopy, Dib24()),
       "StretchBlt (20,40)-(80,60) rop 204 | 4x2x24 from (1,1)-(4,2) mode 1"},
      {StretchDibitsRecord(SRCAND, Dib1(), 48),
       "StretchBlt (20,40)-(80,60) rop 136 | 8x1x1 from (1,0)-(4,1) mode 1"},
      {SetDibitsRecord(0, 2),
       "StretchBlt (20,40)-(28,44) rop 204 | 4x2x24 from (0,0)-(4,2) mode 1"},
      // Of two rows only the upper one.
      {SetDibitsRecord(1, 1),
       "StretchBlt (20,40)-(28,42) rop 204 | 4x1x24 from (0,0)-(4,1) mode 1"},
      {MaskBltRecord(),
       "MaskBlt (20,40)-(26,44) rop 43724 | 4x2x24 from (1,0)-(4,2) | 8x1x1 from 5,0"},
      {PlgBltRecord(), "PlgBlt 0,0 60,0 0,40 | 4x2x24 from (1,0)-(4,2)"},
      {StretchRecord(kEmrALPHABLEND, 0x00800000, 3, 2),
       "AlphaBlend (20,40)-(32,48) alpha 128 | 4x2x24 from (1,0)-(4,2)"},
      {StretchRecord(kEmrALPHABLEND, 0x01FF0000, 3, 2),
       "AlphaBlend (20,40)-(32,48) alpha 255 own | 4x2x24 from (1,0)-(4,2)"},
      // The key comes as 0x00BBGGRR and is given as 0x00RRGGBB.
      {StretchRecord(kEmrTRANSPARENTBLT, 0x00FF8001, 3, 2),
       "TransparentBlt (20,40)-(32,48) key #ff8001 | 4x2x24 from (1,0)-(4,2)"},
      {{kEmrSETPIXELV, {3, 4, RGB(1, 2, 3)}}, "BitBlt (6,8)-(7,9) rop 240 | #010203"},
      {GradientRecord(GRADIENT_FILL_RECT_H), "GradientFill mode 0 0,0 20,10"},
  };
  for (const auto& [record, call] : cases) {
    const Played played = Play({record}, kTwice);
    EXPECT_EQ(played.calls, call.empty() ? "" : call + "\n") << RecordName(record.type);
    EXPECT_EQ(played.faults, "") << RecordName(record.type);
  }
}

TEST(PlayerBitmaps, TurnedDc_DrawsParallelograms) {
  const Transform quarter{0, 1, -1, 0, 0, 0};
  EXPECT_EQ(LastCall({BitBltRecord(kCopy)}, quarter),
            "PlgBlt -20,10 -20,13 -22,10 | 4x2x24 from (1,0)-(4,2)");
  EXPECT_EQ(LastCall({GradientRecord(GRADIENT_FILL_RECT_V)}, quarter),
            "GradientFill mode 2 0,0 0,10 -5,0 -5,10 0,10 -5,0");
  EXPECT_EQ(Play({MaskBltRecord()}, quarter).result.not_carried,
            (std::map<std::string, int>{{"EMR_MASKBLT", 1}}));
}

TEST(PlayerBitmaps, PatternBrushes_HaveTheirOwnOrTheTextsColours) {
  const auto brush = [](uint32_t type) {
    return TestRecord{type, Join({{1, DIB_RGB_COLORS}, Place(6, Dib1(), 48), Dib1()})};
  };
  const TestRecord select = {kEmrSELECTOBJECT, {1}};
  const TestRecord fill = {kEmrRECTANGLE, {1, 2, 3, 4}};
  const TestRecord no_pen = {kEmrSELECTOBJECT, {0x80000000 | NULL_PEN}};
  const TestRecord red_text = {kEmrSETTEXTCOLOR, {RGB(255, 0, 0)}};
  const std::string outline = "Fill M3,2 L1,2 L1,4 L3,4 Z | pattern 8x1x1 ";
  EXPECT_EQ(LastCall({red_text, brush(kEmrCREATEDIBPATTERNBRUSHPT), select, no_pen, fill}),
            outline + "000000/ff0000");
  EXPECT_EQ(LastCall({red_text, brush(kEmrCREATEMONOBRUSH), select, no_pen, fill}),
            outline + "ff0000/ffffff");
}

TEST(PlayerBitmaps, DamagedBitmaps_AreNotDrawn) {
  const auto with = [](TestRecord record, size_t word, uint32_t value) {
    record.payload[word] = value;
    return record;
  };
  const TestRecord whole = StretchDibitsRecord(kCopy, Dib24());
  constexpr size_t kDib = 18;  // where it begins, in words
  const std::pair<TestRecord, std::string> cases[] = {
      {with(whole, 11, 1000), "is too short for what it announces"},         // header's size
      {with(whole, 12, 0xFFFFFFF0), "is too short for what it announces"},   // place of the bits
      {with(whole, 13, 8), "a bitmap of 8 bytes that needs 24"},             // size of the bits
      {with(whole, kDib, 41), "its bitmap has no header"},                   // biSize
      {with(whole, kDib + 1, 0x7FFFFFFF), "a bitmap of 2147483647 x 2"},     // biWidth
      {with(whole, kDib + 2, 0x80000000), "a bitmap of 4 x -2147483648"},    // biHeight
      {with(whole, kDib + 3, 1 | 7 << 16), "there is no bitmap of 7 bits"},  // biBitCount
      {with(whole, kDib + 4, BI_PNG), "its picture cannot be decoded"},      // biCompression
  };
  for (const auto& [record, fault] : cases) {
    const Played played = Play({record});
    EXPECT_EQ(played.calls, "");
    EXPECT_NE(played.faults.find("record 2 (EMR_STRETCHDIBITS): " + fault), std::string::npos)
        << played.faults;
  }
}

}  // namespace
}  // namespace quillo::host::emf
