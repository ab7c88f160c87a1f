#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <vector>

#include "config/papers/paper_table.h"
#include "config/papers/sheet.h"

namespace quillo {
namespace {

// The sheets as stationers give them, in micrometres: every inch fraction of the table is a whole
// number of them, so that the exact size in any unit is one integer division away.
constexpr struct {
  int16_t paper;
  int64_t width, height;
} kSheets[] = {
    {1, 215900, 279400},  {5, 215900, 355600},   {9, 210000, 297000},  {24, 431800, 558800},
    {25, 558800, 863600}, {26, 863600, 1117600}, {2, 215900, 279400},  {3, 279400, 431800},
    {4, 431800, 279400},  {6, 139700, 215900},   {7, 184150, 266700},  {8, 297000, 420000},
    {10, 210000, 297000}, {11, 148000, 210000},  {13, 182000, 257000}, {14, 215900, 330200},
    {15, 215000, 275000}, {18, 215900, 279400},  {19, 98425, 225425},  {20, 104775, 241300},
    {21, 114300, 263525}, {22, 120650, 279400},  {23, 127000, 292100}, {27, 110000, 220000},
    {28, 162000, 229000}, {29, 324000, 458000},  {30, 229000, 324000}, {31, 114000, 162000},
    {32, 114000, 229000}, {33, 250000, 353000},  {34, 176000, 250000}, {35, 176000, 125000},
    {36, 110000, 230000}, {37, 98425, 190500},   {38, 92075, 165100},  {39, 377825, 279400},
    {40, 215900, 304800}, {41, 215900, 330200},
};

Sheet Measure(const PaperChoice& choice, int32_t dpi, const CustomPaper* custom = nullptr) {
  return MeasureSheet(SizeOf(choice, custom), PrivatePart{}, dpi);
}

TEST(MeasureSheet, EveryFormInEveryUnit_IsTheExactSizeTruncated) {
  for (const auto& [paper, width, height] : kSheets) {
    for (const int32_t dpi : {50, 72, 96, 150, 300, 600, 1200, 1600}) {
      const auto expected = [&, across = width, along = height](int64_t multiply, int64_t divide) {
        return Extent{static_cast<int32_t>(across * multiply / divide),
                      static_cast<int32_t>(along * multiply / divide)};
      };
      const Sheet sheet = Measure({.paper = paper}, dpi);
      EXPECT_EQ(sheet.pixels.size, expected(dpi, 25400)) << paper << " at " << dpi;
      EXPECT_EQ(sheet.millimetres.size, expected(1, 1000)) << paper;
      EXPECT_EQ(sheet.tenths.size, expected(1, 100)) << paper;
    }
  }
}

TEST(PaperTable, PlacesAndOtherNumbers) {
  ASSERT_TRUE(std::ranges::equal(StandardForms(), kSheets, {}, &PaperForm::paper,
                                 [](auto& sheet) { return sheet.paper; }));
  for (int paper = -300; paper <= 300; ++paper) {
    const bool known = std::ranges::count(kSheets, paper, [](auto& sheet) { return sheet.paper; });
    EXPECT_EQ(FindStandardForm(static_cast<int16_t>(paper)) != nullptr, known) << paper;
  }
}

TEST(MeasureSheet, OtherPapersAndOrientations) {
  const CustomPaper metric = {L"", 257, 3, 65535, 2100, nullptr};
  const CustomPaper inches = {L"", 257, kInchPaper, 60, 40, nullptr};
  const struct {
    PaperChoice choice;
    const CustomPaper* custom;
    Extent pixels, millimetres, tenths;  // at 300 dpi
  } cases[] = {
      {{.paper = kPaperA4, .landscape = true}, {}, {3507, 2480}, {297, 210}, {2970, 2100}},
      {{kPaperUser, false, 2100, 2970}, {}, {2480, 3507}, {210, 297}, {2100, 2970}},
      {{kPaperUser, true, 2100, 2970}, {}, {3507, 2480}, {297, 210}, {2970, 2100}},
      {{kPaperB4, false, 1, 2}, {}, {2550, 3300}, {215, 279}, {2159, 2794}},
      {{-5, false, 1, 2}, {}, {2550, 3300}, {215, 279}, {2159, 2794}},
      {{257, true, 1, 2}, {}, {3300, 2550}, {279, 215}, {2794, 2159}},
      {{257, false, 1, 2}, &metric, {2480, 77403}, {210, 6553}, {2100, 65535}},
      {{257, false, 1, 2}, &inches, {1200, 1800}, {101, 152}, {1016, 1524}},
      {{257, true, 1, 2}, &inches, {1800, 1200}, {152, 101}, {1524, 1016}},
  };
  for (const auto& c : cases) {
    const Sheet sheet = Measure(c.choice, 300, c.custom);
    EXPECT_EQ(sheet.pixels.size, c.pixels) << c.choice.paper;
    EXPECT_EQ(sheet.millimetres.size, c.millimetres) << c.choice.paper;
    EXPECT_EQ(sheet.tenths.size, c.tenths) << c.choice.paper;
  }
}

TEST(MeasureSheet, MarginsLeaveThePrintableArea) {
  PrivatePart own = {};
  own.margins_given = 1, own.margin_unit = kMarginInches;
  own.top = {1, 2}, own.left = {1, 4}, own.right = {3, 4}, own.bottom = {30, 1};
  const ExactSize letter = SizeOf({.paper = kPaperLetter}, nullptr);
  Sheet sheet = MeasureSheet(letter, own, 300);
  EXPECT_EQ(sheet.pixels.margins, (Margins{75, 150, 225, 9000}));
  EXPECT_EQ(sheet.pixels.printable, (Extent{2550 - 300, 0}));
  EXPECT_EQ(sheet.millimetres.margins, (Margins{6, 12, 19, 762}));
  EXPECT_EQ(sheet.tenths.margins, (Margins{63, 127, 190, 7620}));
  own.margins_given = 0;
  sheet = MeasureSheet(letter, own, 300);
  EXPECT_EQ(sheet.tenths.margins, Margins{});
  EXPECT_EQ(sheet.tenths.printable, (Extent{2159, 2794}));
}

TEST(ConvertLength, UnknownUnitsAndOverflow_NoTrap) {
  const struct {
    uint32_t size_class, unit;
    Fraction length;
    int32_t expected;
  } cases[] = {
      {4, 0, {1, 1}, 0},
      {kSizeInches, 3, {1, 1}, 0},
      {UINT32_MAX, UINT32_MAX, {1, 1}, 0},
      {3, 2, {-7, 2}, -3},
      {3, 2, {1, 0}, 0},
      {3, 2, {INT32_MIN, -1}, INT32_MIN},
      {0, 2, {INT32_MAX, 1}, -254},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ConvertLength(c.length, c.size_class, c.unit, 300), c.expected)
        << c.size_class << " " << c.unit << " " << c.length.numerator;
  }
}

TEST(ConvertMargin, RoundsPixelsTruncatesTheRest) {
  const struct {
    StoredMargin margin;
    MarginUnit unit;
    int32_t pixels, millimetres, tenths;  // at 300 dpi
  } cases[] = {
      {{0.126f, 1}, kMarginInches, 38, 3, 32},
      {{254, 10}, kMarginMillimetres, 300, 254, 254},
      {{1, 0}, kMarginInches, INT32_MAX, INT32_MAX, INT32_MAX},
      {{0, 0}, kMarginInches, 0, 0, 0},
      {{-1e30f, 1}, kMarginInches, INT32_MIN, INT32_MIN, INT32_MIN},
  };
  for (const auto& c : cases) {
    const auto converted = [&](PaperUnit target) {
      return ConvertMargin(c.margin, c.unit, target, 300);
    };
    EXPECT_EQ(converted(PaperUnit::kDevicePixels), c.pixels) << c.margin.value;
    EXPECT_EQ(converted(PaperUnit::kMillimetres), c.millimetres) << c.margin.value;
    EXPECT_EQ(converted(PaperUnit::kTenthsOfMillimetre), c.tenths) << c.margin.value;
  }
}

TEST(SubtractMargins, AbsurdMargins_NeitherTrapNorTurnNegative) {
  const Extent sheet = {100, 50};
  EXPECT_EQ(SubtractMargins(sheet, {60, 50, 60, 0}), (Extent{0, 0}));
  EXPECT_EQ(SubtractMargins(sheet, {INT32_MAX, -10, INT32_MAX, 0}), (Extent{0, 60}));
  EXPECT_EQ(SubtractMargins(sheet, {INT32_MIN, 1, INT32_MIN, 0}), (Extent{INT32_MAX, 49}));
}

TEST(CustomPaperList, TakeDuplicates_FirstOfANumberStays) {
  using List = std::vector<uint16_t>;
  CustomPaper papers[8] = {};
  const uint16_t numbers[] = {300, 301, 300, 302, 301, 0, 65535, 0};
  for (size_t i = 0; i < 8; ++i) {
    papers[i].number = numbers[i];
    papers[i].next = i < 7 ? &papers[i + 1] : nullptr;
  }
  const auto numbers_of = [](const CustomPaper* paper) {
    List list;
    for (; paper != nullptr; paper = paper->next) list.push_back(paper->number);
    return list;
  };
  EXPECT_EQ(numbers_of(TakeDuplicates(papers)), (List{0, 301, 300}));
  EXPECT_EQ(numbers_of(papers), (List{300, 301, 302, 0, 65535}));
  EXPECT_EQ(TakeDuplicates(papers), nullptr);
}

}  // namespace
}  // namespace quillo
