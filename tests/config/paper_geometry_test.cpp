#include "config/paper_geometry.h"

#include <cstring>
#include <gtest/gtest.h>

namespace quillo {
namespace {

DeviceMode Mode(int16_t paper, int16_t quality, int16_t orientation = DMORIENT_PORTRAIT) {
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, L"no such printer");
  mode.pub.dmPaperSize = paper;
  mode.pub.dmPrintQuality = quality;
  mode.pub.dmYResolution = quality;
  mode.pub.dmOrientation = orientation;
  return mode;
}

template <typename T>
void Put(DeviceMode& mode, size_t offset, T value) {
  std::memcpy(reinterpret_cast<std::byte*>(&mode) + offset, &value, sizeof(value));
}

uint32_t MarginUnitOf(const DeviceMode& mode) {
  uint32_t unit;
  std::memcpy(&unit, reinterpret_cast<const std::byte*>(&mode) + 1016, sizeof(unit));
  return unit;
}

TEST(SheetSize, StandardUserAndUnknownPapers) {
  DeviceMode user = Mode(DMPAPER_USER, 300);
  user.pub.dmPaperWidth = 2100;
  user.pub.dmPaperLength = 2970;
  const struct {
    DeviceMode mode;
    PaperUnit unit;
    Extent expected;
  } cases[] = {
      {Mode(DMPAPER_LETTER, 300), PaperUnit::kTenthsOfMillimetre, {2159, 2794}},
      {Mode(DMPAPER_A4, 600), PaperUnit::kDevicePixels, {4960, 7015}},
      {Mode(DMPAPER_A4, DMRES_HIGH), PaperUnit::kDevicePixels, {4960, 7015}},
      {Mode(DMPAPER_A4, 600, DMORIENT_LANDSCAPE), PaperUnit::kMillimetres, {297, 210}},
      {user, PaperUnit::kDevicePixels, {2480, 3507}},
      {Mode(12, 300), PaperUnit::kTenthsOfMillimetre, {2159, 2794}},
      {Mode(-5, 300), PaperUnit::kTenthsOfMillimetre, {2159, 2794}},
      {Mode(257, 300), PaperUnit::kTenthsOfMillimetre, {2159, 2794}},
      {Mode(257, 300, DMORIENT_LANDSCAPE), PaperUnit::kTenthsOfMillimetre, {2794, 2159}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(SheetSize(c.mode, c.unit), c.expected)
        << "paper " << c.mode.pub.dmPaperSize << " unit " << static_cast<uint32_t>(c.unit);
  }
}

TEST(LookUpPaperSize, AnyOutputMayBeNull) {
  const DeviceMode mode = Mode(DMPAPER_A4, 300);
  Fraction height = {};
  uint32_t unit_class = 99;
  LookUpPaperSize(mode, nullptr, &height, nullptr);
  LookUpPaperSize(mode, nullptr, nullptr, &unit_class);
  LookUpPaperSize(mode, nullptr, nullptr, nullptr);
  EXPECT_EQ(height.numerator, 297);
  EXPECT_EQ(unit_class, uint32_t{kSizeMillimetres});
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
}

TEST(GetMargins, StoredMargins_AreInchesAndTheUnitFieldSaysSo) {
  DeviceMode mode = Mode(DMPAPER_LETTER, 300);
  Margins margins = {9, 9, 9, 9};
  GetMargins(mode, &margins, 0);
  EXPECT_EQ(margins, (Margins{0, 0, 0, 0}));
  EXPECT_EQ(MarginUnitOf(mode), 1u);

  Put<uint32_t>(mode, 492, 1);
  const float blocks[] = {1, 2, 1, 4, 3, 4, 1, 1};  // top 1/2, left 1/4, right 3/4, bottom 1
  for (size_t i = 0; i < std::size(blocks); ++i) Put(mode, 1020 + 4 * i, blocks[i]);
  for (const auto& [unit, expected] :
       {std::pair{0u, Margins{75, 150, 225, 300}}, std::pair{1u, Margins{6, 12, 19, 25}},
        std::pair{2u, Margins{63, 127, 190, 254}}, std::pair{3u, Margins{9, 9, 9, 9}}}) {
    margins = {9, 9, 9, 9};
    Put<uint32_t>(mode, 1016, 0);
    GetMargins(mode, &margins, unit);
    EXPECT_EQ(margins, expected) << "unit " << unit;
    EXPECT_EQ(MarginUnitOf(mode), 1u) << "unit " << unit;
  }
  EXPECT_EQ(PrintableSize(mode, PaperUnit::kDevicePixels), (Extent{2550 - 300, 3300 - 450}));

  Put<uint32_t>(mode, 1016, 0);
  GetMargins(mode, nullptr, 0);
  EXPECT_EQ(MarginUnitOf(mode), 0u);
}

}  // namespace
}  // namespace quillo
