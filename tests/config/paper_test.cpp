#include <cstdint>
#include <gtest/gtest.h>
#include <iterator>
#include <set>

#include "config/paper_table.h"
#include "config/paper_units.h"

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

TEST(PaperTable, IdentifiersAndGaps) {
  std::set<uint32_t> identifiers;
  for (const PaperForm& form : StandardForms()) {
    EXPECT_EQ(form.identifiers[1], form.identifiers[0] + 1) << form.paper;
    identifiers.insert(std::begin(form.identifiers), std::end(form.identifiers));
  }
  EXPECT_EQ(identifiers.size(), 2 * std::size(kSheets));
  EXPECT_EQ(*identifiers.begin(), 1u);
  EXPECT_EQ(*identifiers.rbegin(), 79u);
  for (const int16_t paper : std::initializer_list<int16_t>{-1, 0, 12, 16, 17, 42, 255, 256, 300}) {
    EXPECT_EQ(FindStandardForm(paper), nullptr) << paper;
  }
}

TEST(ConvertLength, EveryClassAndUnit) {
  const struct {
    uint32_t size_class, unit;
    Fraction length;
    int32_t dpi, expected;
  } cases[] = {
      {0, 0, {17, 2}, 300, 2550},
      {0, 1, {17, 2}, 300, 215},
      {0, 2, {17, 2}, 300, 2159},
      {1, 0, {85, 1}, 300, 2550},
      {1, 1, {85, 1}, 300, 215},
      {1, 2, {85, 1}, 300, 2159},
      {2, 0, {210, 1}, 600, 4960},
      {2, 1, {210, 1}, 600, 210},
      {2, 2, {210, 1}, 600, 2100},
      {3, 0, {2100, 1}, 300, 2480},
      {3, 1, {2159, 1}, 300, 215},
      {3, 2, {2159, 1}, 300, 2159},
      {4, 0, {1, 1}, 300, 0},
      {0, 3, {1, 1}, 300, 0},
      {0, UINT32_MAX, {1, 1}, 300, 0},
      {3, 2, {-7, 2}, 0, -3},                 // towards zero
      {3, 2, {1, 0}, 0, 0},                   // no trap on a zero denominator,
      {3, 2, {INT32_MIN, -1}, 0, INT32_MIN},  // on the quotient that does not fit,
      {0, 2, {INT32_MAX, 1}, 0, -254},        // or on a product past 32 bits
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ConvertLength(c.length, c.size_class, c.unit, c.dpi), c.expected)
        << "class " << c.size_class << " unit " << c.unit << " of " << c.length.numerator << "/"
        << c.length.denominator;
  }
}

TEST(ConvertMargin, EveryUnit) {
  const struct {
    float value, divisor;
    uint32_t unit;
    PaperUnit target;
    int32_t expected;
  } cases[] = {
      {0.5f, 1, kMarginInches, PaperUnit::kDevicePixels, 150},
      {0.5f, 1, kMarginInches, PaperUnit::kMillimetres, 12},
      {0.5f, 1, kMarginInches, PaperUnit::kTenthsOfMillimetre, 127},
      {1, 4, kMarginInches, PaperUnit::kDevicePixels, 75},
      {0.126f, 1, kMarginInches, PaperUnit::kDevicePixels, 38},  // 37.8 rounds up
      {254, 10, kMarginMillimetres, PaperUnit::kDevicePixels, 300},
      {254, 10, kMarginMillimetres, PaperUnit::kMillimetres, 254},
      {254, 10, kMarginMillimetres, PaperUnit::kTenthsOfMillimetre, 254},
      {1, 0, kMarginInches, PaperUnit::kDevicePixels, INT32_MAX},
      {0, 0, kMarginInches, PaperUnit::kMillimetres, 0},
      {-1e30f, 1, kMarginInches, PaperUnit::kTenthsOfMillimetre, INT32_MIN},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ConvertMargin(c.value, c.divisor, c.unit, c.target, 300), c.expected)
        << c.value << "/" << c.divisor << " unit " << c.unit;
  }
}

TEST(SubtractMargins, MarginsBeyondTheSheet_LeaveNothing) {
  const Extent sheet = {100, 50};
  EXPECT_EQ(SubtractMargins(sheet, {10, 20, 30, 5}), (Extent{60, 25}));
  EXPECT_EQ(SubtractMargins(sheet, {60, 50, 60, 0}), (Extent{0, 0}));
  EXPECT_EQ(SubtractMargins(sheet, {INT32_MAX, INT32_MAX, INT32_MAX, 1}), (Extent{0, 0}));
  EXPECT_EQ(SubtractMargins(sheet, {INT32_MIN, -10, INT32_MIN, 0}), (Extent{INT32_MAX, 60}));
}

}  // namespace
}  // namespace quillo
