#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <vector>

#include "config/papers/paper_table.h"
#include "config/papers/sheet.h"
#include "support/case_table.h"
#include "support/line.h"

namespace quillo {
namespace {

using test::Line;
using test::Scan;

Sheet Measure(const PaperChoice& choice, int32_t dpi, const CustomPaper* custom = nullptr) {
  return MeasureSheet(SizeOf(choice, custom), PrivatePart{}, dpi);
}

std::string Text(const Sheet& sheet) {
  const auto [pixels, mm, tenths] =
      std::tuple(sheet.pixels.size, sheet.millimetres.size, sheet.tenths.size);
  return Line(pixels.width, ' ', pixels.height, ", ", mm.width, ' ', mm.height, ", ", tenths.width,
              ' ', tenths.height);
}

TEST(MeasureSheet, EveryFormInEveryUnit_IsTheExactSizeTruncated) {
  const auto sheets = test::ReadCases("papers/sheets.txt");
  std::vector<int16_t> papers;
  for (const auto& [place, fields] : sheets) {
    papers.push_back(static_cast<int16_t>(std::stoi(fields[0])));
    const int64_t width = std::stoi(fields[1]), height = std::stoi(fields[2]);
    for (const int32_t dpi : {50, 72, 96, 150, 300, 600, 1200, 1600}) {
      EXPECT_EQ(Text(Measure({.paper = papers.back()}, dpi)),
                Line(width * dpi / 25400, ' ', height * dpi / 25400, ", ", width / 1000, ' ',
                     height / 1000, ", ", width / 100, ' ', height / 100))
          << place << " at " << dpi;
    }
  }
  ASSERT_TRUE(std::ranges::equal(StandardForms(), papers, {}, &PaperForm::paper));
  for (int paper = -300; paper <= 300; ++paper) {
    EXPECT_EQ(FindStandardForm(static_cast<int16_t>(paper)) != nullptr,
              std::ranges::count(papers, paper) != 0)
        << paper;
  }
}

TEST(MeasureSheet, OtherPapersAndOrientations) {
  test::CheckCases("papers/choices.txt", [](const auto& fields) {
    PaperChoice choice = {};
    CustomPaper custom = {L"", 257, 0, 0, 0, nullptr};
    Scan(fields[0], choice.paper, choice.landscape, choice.width, choice.length, custom.kind,
         custom.length, custom.width);
    return Text(Measure(choice, 300, custom.kind < 0 ? nullptr : &custom));
  });
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
  test::CheckCases("papers/lengths.txt", [](const auto& fields) {
    uint32_t size_class = 0, unit = 0;
    Fraction length = {};
    Scan(fields[0], size_class, unit, length.numerator, length.denominator);
    return std::to_string(ConvertLength(length, size_class, unit, 300));
  });
}

TEST(ConvertMargin, RoundsPixelsTruncatesTheRest) {
  test::CheckCases("papers/margins.txt", [](const auto& fields) {
    StoredMargin margin = {};
    uint32_t unit = 0;
    Scan(fields[0], margin.value, margin.divisor, unit);
    return Line(ConvertMargin(margin, unit, PaperUnit::kDevicePixels, 300), ' ',
                ConvertMargin(margin, unit, PaperUnit::kMillimetres, 300), ' ',
                ConvertMargin(margin, unit, PaperUnit::kTenthsOfMillimetre, 300));
  });
}

TEST(SubtractMargins, AbsurdMargins_NeitherTrapNorTurnNegative) {
  const Extent sheet = {100, 50};
  EXPECT_EQ(SubtractMargins(sheet, {60, 50, 60, 0}), (Extent{0, 0}));
  EXPECT_EQ(SubtractMargins(sheet, {INT32_MAX, -10, INT32_MAX, 0}), (Extent{0, 60}));
  EXPECT_EQ(SubtractMargins(sheet, {INT32_MIN, 1, INT32_MIN, 0}), (Extent{INT32_MAX, 49}));
}

}  // namespace
}  // namespace quillo
