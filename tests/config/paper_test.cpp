#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <iterator>

#include "config/papers/paper_table.h"
#include "config/papers/paper_units.h"

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

uint32_t ClassOf(const PaperForm& form) { return form.inches ? kSizeInches : kSizeMillimetres; }

TEST(PaperTable, EveryFormInEveryUnit_IsTheExactSizeTruncated) {
  ASSERT_EQ(StandardForms().size(), std::size(kSheets));
  for (size_t i = 0; i < std::size(kSheets); ++i) {
    const auto& sheet = kSheets[i];
    EXPECT_EQ(StandardForms()[i].paper, sheet.paper) << "place " << i;
    const PaperForm* form = FindStandardForm(sheet.paper);
    ASSERT_NE(form, nullptr) << sheet.paper;
    const auto converted = [&](uint32_t unit, int32_t dpi) {
      return std::pair<int64_t, int64_t>(ConvertLength(form->width, ClassOf(*form), unit, dpi),
                                         ConvertLength(form->height, ClassOf(*form), unit, dpi));
    };
    for (const int32_t dpi : {50, 72, 96, 150, 300, 600, 1200, 1600}) {
      EXPECT_EQ(converted(0, dpi), std::pair(sheet.width * dpi / 25400, sheet.height * dpi / 25400))
          << sheet.paper << " at " << dpi;
    }
    EXPECT_EQ(converted(1, 0), std::pair(sheet.width / 1000, sheet.height / 1000)) << sheet.paper;
    EXPECT_EQ(converted(2, 0), std::pair(sheet.width / 100, sheet.height / 100)) << sheet.paper;
  }
}

TEST(PaperTable, OtherNumbers_AreNoForm) {
  for (int paper = -300; paper <= 300; ++paper) {
    const bool known = std::ranges::count(kSheets, paper, [](auto& sheet) { return sheet.paper; });
    EXPECT_EQ(FindStandardForm(static_cast<int16_t>(paper)) != nullptr, known) << paper;
  }
}

TEST(ConvertLength, OddClassesAndNumbers) {
  const struct {
    uint32_t size_class, unit;
    Fraction length;
    int32_t expected;  // at 300 dpi
  } cases[] = {
      {1, 0, {85, 1}, 2550},
      {1, 1, {85, 1}, 215},
      {1, 2, {85, 1}, 2159},
      {3, 0, {2100, 1}, 2480},
      {3, 1, {2159, 1}, 215},
      {3, 2, {2159, 1}, 2159},
      {4, 0, {1, 1}, 0},
      {0, 3, {1, 1}, 0},
      {UINT32_MAX, UINT32_MAX, {1, 1}, 0},
      {3, 2, {-7, 2}, -3},  // towards zero; and no trap on a zero denominator, on the one quotient
                            // that does not fit, or on a product past 32 bits:
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
    float value, divisor;
    MarginUnit unit;
    int32_t pixels, millimetres, tenths;  // at 300 dpi
  } cases[] = {
      {0.5f, 1, kMarginInches, 150, 12, 127},
      {0.126f, 1, kMarginInches, 38, 3, 32},
      {254, 10, kMarginMillimetres, 300, 254, 254},
      {1, 0, kMarginInches, INT32_MAX, INT32_MAX, INT32_MAX},
      {0, 0, kMarginInches, 0, 0, 0},
      {-1e30f, 1, kMarginInches, INT32_MIN, INT32_MIN, INT32_MIN},
  };
  for (const auto& c : cases) {
    const auto converted = [&](PaperUnit target) {
      return ConvertMargin(c.value, c.divisor, c.unit, target, 300);
    };
    EXPECT_EQ(converted(PaperUnit::kDevicePixels), c.pixels) << c.value;
    EXPECT_EQ(converted(PaperUnit::kMillimetres), c.millimetres) << c.value;
    EXPECT_EQ(converted(PaperUnit::kTenthsOfMillimetre), c.tenths) << c.value;
  }
}

TEST(SubtractMargins, MarginsBeyondTheSheet_LeaveNothing) {
  const Extent sheet = {100, 50};
  EXPECT_EQ(SubtractMargins(sheet, {10, 20, 30, 5}), (Extent{60, 25}));
  EXPECT_EQ(SubtractMargins(sheet, {60, 50, 60, 0}), (Extent{0, 0}));
  EXPECT_EQ(SubtractMargins(sheet, {INT32_MAX, -10, INT32_MAX, 0}), (Extent{0, 60}));
  EXPECT_EQ(SubtractMargins(sheet, {INT32_MIN, 1, INT32_MIN, 0}), (Extent{INT32_MAX, 49}));
}

}  // namespace
}  // namespace quillo
