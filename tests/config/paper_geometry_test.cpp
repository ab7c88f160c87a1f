#include "config/papers/paper_geometry.h"

#include <cstring>
#include <gtest/gtest.h>

namespace quillo {
namespace {

DeviceMode Mode(int16_t paper, int16_t quality, int16_t orientation = DMORIENT_PORTRAIT) {
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, L"no such printer");
  mode.pub.dmPaperSize = paper;
  mode.pub.dmPrintQuality = mode.pub.dmYResolution = quality;
  mode.pub.dmOrientation = orientation;
  mode.pub.dmPaperWidth = 2100;  // counts for DMPAPER_USER only
  mode.pub.dmPaperLength = 2970;
  return mode;
}

template <typename T>
void Put(DeviceMode& mode, size_t offset, T value) {
  std::memcpy(reinterpret_cast<std::byte*>(&mode) + offset, &value, sizeof(value));
}

TEST(SheetSize, StandardUserAndUnknownPapers) {
  const struct {
    int16_t paper, quality, orientation;
    PaperUnit unit;
    Extent expected;
  } cases[] = {
      {DMPAPER_LETTER, 300, 1, PaperUnit::kTenthsOfMillimetre, {2159, 2794}},
      {DMPAPER_A4, 600, 1, PaperUnit::kDevicePixels, {4960, 7015}},
      {DMPAPER_A4, DMRES_HIGH, 1, PaperUnit::kDevicePixels, {4960, 7015}},
      {DMPAPER_A4, 600, 2, PaperUnit::kMillimetres, {297, 210}},
      {DMPAPER_USER, 300, 1, PaperUnit::kDevicePixels, {2480, 3507}},
      {DMPAPER_USER, 300, 2, PaperUnit::kTenthsOfMillimetre, {2970, 2100}},
      {12, 300, 1, PaperUnit::kTenthsOfMillimetre, {2159, 2794}},
      {-5, 300, 1, PaperUnit::kTenthsOfMillimetre, {2159, 2794}},
      {257, 300, 2, PaperUnit::kTenthsOfMillimetre, {2794, 2159}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(SheetSize(Mode(c.paper, c.quality, c.orientation), c.unit), c.expected) << c.paper;
  }
}

TEST(ConvertPaperSize, MissingArguments_FailWithoutWriting) {
  const DeviceMode mode = Mode(DMPAPER_A4, 300);
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
  LookUpPaperSize(mode, nullptr, nullptr, nullptr);
}

TEST(GetMargins, AreInchesAndTheUnitFieldSaysSo) {
  DeviceMode mode = Mode(DMPAPER_LETTER, 300);
  // Value and divisor: top 1/2, left 1/4, right 3/4, bottom 1.
  const float blocks[] = {1, 2, 1, 4, 3, 4, 1, 1};
  for (size_t i = 0; i < std::size(blocks); ++i) Put(mode, 1020 + 4 * i, blocks[i]);
  const struct {
    uint32_t given, unit;
    Margins expected;
  } cases[] = {
      {0, 0, {0, 0, 0, 0}},        {1, 0, {75, 150, 225, 300}}, {1, 1, {6, 12, 19, 25}},
      {1, 2, {63, 127, 190, 254}}, {1, 3, {9, 9, 9, 9}},
  };
  for (const auto& c : cases) {
    Put(mode, 492, c.given);
    Put(mode, 1016, 0u);
    DeviceMode inches = mode;
    Put(inches, 1016, 1u);
    GetMargins(mode, nullptr, c.unit);
    EXPECT_NE(std::memcmp(&mode, &inches, sizeof(mode)), 0) << c.unit;
    Margins margins = {9, 9, 9, 9};
    GetMargins(mode, &margins, c.unit);
    EXPECT_EQ(margins, c.expected) << c.unit;
    EXPECT_EQ(std::memcmp(&mode, &inches, sizeof(mode)), 0) << c.unit;
  }
  EXPECT_EQ(PrintableSize(mode, PaperUnit::kDevicePixels), (Extent{2550 - 300, 3300 - 450}));
}

}  // namespace
}  // namespace quillo
