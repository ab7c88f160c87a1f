#include "config/papers/paper_geometry.h"

#include <gtest/gtest.h>

#include "support/margins.h"
#include "support/mode_members.h"

namespace quillo {
namespace {

DeviceMode LetterWithMargins() {
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, nullptr);
  mode.pub.dmPrintQuality = DMRES_MEDIUM;
  test::SetMargins(mode, 0.25f, 0.5f);
  return mode;
}

TEST(PaperQuestions, MissingArguments_FailWithoutWriting) {
  const DeviceMode mode = LetterWithMargins();
  const Fraction one = {1, 1};
  Extent out = {-1, -1};
  EXPECT_EQ(ConvertPaperSize(nullptr, &one, &one, 0, 0, &out), 0);
  EXPECT_EQ(ConvertPaperSize(&mode, nullptr, &one, 0, 0, &out), 0);
  EXPECT_EQ(ConvertPaperSize(&mode, &one, nullptr, 0, 0, &out), 0);
  EXPECT_EQ(ConvertPaperSize(&mode, &one, &one, 0, 0, nullptr), 0);
  EXPECT_EQ(out, (Extent{-1, -1}));
  EXPECT_EQ(ConvertPaperSize(nullptr, &one, &one, 0, 2, &out), 1);
  EXPECT_EQ(out, (Extent{254, 254}));
  EXPECT_EQ(ConvertPaperSize(&mode, &one, &one, 9, 9, &out), 1);
  EXPECT_EQ(out, (Extent{0, 0}));

  Fraction width, height;
  uint32_t unit_class = 9;
  LookUpPaperSize(mode, nullptr, nullptr, nullptr);
  LookUpPaperSize(mode, &width, &height, &unit_class);
  EXPECT_EQ(ConvertPaperSize(&mode, &width, &height, unit_class, 0, &out), 1);
  EXPECT_EQ(out, (Extent{2550, 3300}));
}

TEST(GetMargins, AreInchesAndTheUnitFieldSaysSo) {
  const DeviceMode inches = LetterWithMargins();
  const Margins expected[] = {{75, 150, 0, 0}, {6, 12, 0, 0}, {63, 127, 0, 0}, {9, 9, 9, 9}};
  for (uint32_t unit = 0; unit < std::size(expected); ++unit) {
    DeviceMode mode = inches;
    mode.own.margin_unit = kMarginMillimetres;
    GetMargins(mode, nullptr, unit);
    EXPECT_EQ(mode.own.margin_unit, kMarginMillimetres);
    Margins margins = {9, 9, 9, 9};
    GetMargins(mode, &margins, unit);
    EXPECT_EQ(margins, expected[unit]) << unit;
    EXPECT_TRUE(test::SameModes(mode, inches));
  }
}

}  // namespace
}  // namespace quillo
