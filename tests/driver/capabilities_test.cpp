#include "driver/capabilities.h"

#include <gtest/gtest.h>
#include <string_view>

#include "config/papers/paper_geometry.h"

namespace quillo {
namespace {

DEVICE_PDEV Device(short paper, short dpi) {
  DEVICE_PDEV device = {};
  BuildDefaultDeviceMode(device.mode, nullptr);
  device.mode.pub.dmPaperSize = paper;
  device.mode.pub.dmPrintQuality = device.mode.pub.dmYResolution = dpi;
  device.resolution = {static_cast<uint32_t>(dpi), static_cast<uint32_t>(dpi)};
  device.sheet = ResolveSheet(device.mode);
  return device;
}

/// Padding included: the driver clears the whole block.
std::string_view BytesOf(const GDIINFO& info) {
  return {reinterpret_cast<const char*>(&info), sizeof info};
}

TEST(DescribeGraphics, A4At600Dpi_WholeBlock) {
  DEVICE_PDEV device = Device(DMPAPER_A4, 600);
  device.resolution.y = 300;
  device.physical_offset = {75, 150};
  device.sheet.pixels.printable = {4000, 7000};
  device.sheet.millimetres.printable = {200, 290};
  const GDIINFO info = DescribeGraphics(device);

  GDIINFO expected = {};
  expected.ulVersion = 0x500;
  expected.ulTechnology = 2;
  expected.ulHorzSize = 200;
  expected.ulVertSize = 290;
  expected.ulHorzRes = 4000;
  expected.ulVertRes = 7000;
  expected.cBitsPixel = 24;
  expected.cPlanes = 1;
  expected.ulNumColors = 0xFFFFFFFF;
  expected.ulLogPixelsX = 600;
  expected.ulLogPixelsY = 300;
  expected.flTextCaps = 0x1FFF;
  expected.ulAspectX = expected.ulAspectY = 100;
  expected.ulAspectXY = 141;
  expected.xStyleStep = expected.yStyleStep = 1;
  expected.denStyleStep = 3;
  expected.ptlPhysOffset = {75, 150};
  expected.szlPhysSize = {4960, 7015};
  expected.ciDevice.Red = {6700, 3300, 0};
  expected.ciDevice.Green = {2100, 7100, 0};
  expected.ciDevice.Blue = {1400, 800, 0};
  expected.ciDevice.AlignmentWhite = {3127, 3290, 0};
  expected.ciDevice.RedGamma = expected.ciDevice.GreenGamma = expected.ciDevice.BlueGamma = 20000;
  expected.ulPrimaryOrder = 4;
  expected.ulHTPatternSize = 7;
  expected.ulHTOutputFormat = 6;
  expected.flHTFlags = 4;
  EXPECT_EQ(BytesOf(info), BytesOf(expected));
}

TEST(DescribeGraphics, HalftoneCell_StepsAtEachLimit) {
  const struct {
    short dpi;
    ULONG cell;
  } cases[] = {{96, 3},   {179, 3},   {180, 5},   {399, 5},   {400, 7},   {899, 7},  {900, 9},
               {1199, 9}, {1200, 11}, {1799, 11}, {1800, 13}, {2399, 13}, {2400, 15}};
  for (const auto& c : cases) {
    DEVICE_PDEV device = Device(DMPAPER_LETTER, c.dpi);
    EXPECT_EQ(DescribeGraphics(device).ulHTPatternSize, c.cell) << c.dpi;
  }
}

TEST(DescribeDevice, Fonts_TenPoints) {
  DEVICE_PDEV device = Device(DMPAPER_LETTER, 600);
  device.resolution.x = 1200;
  device.palette = reinterpret_cast<HPALETTE>(uintptr_t{0x1234});
  const DEVINFO info = DescribeDevice(device);
  EXPECT_EQ(info.flGraphicsCaps, 0x0020053Eu);
  EXPECT_EQ(info.flGraphicsCaps2, 0u);
  EXPECT_EQ(info.iDitherFormat, static_cast<ULONG>(BMF_24BPP));
  EXPECT_EQ(info.hpalDefault, device.palette);
  EXPECT_EQ(info.cFonts, 0u);

  const struct {
    const LOGFONTW& font;
    const wchar_t* face;
    BYTE pitch_and_family;
  } fonts[] = {{info.lfDefaultFont, L"Courier", 0x31},
               {info.lfAnsiVarFont, L"Helvetica", 0x22},
               {info.lfAnsiFixFont, L"Courier", 0x31}};
  for (const auto& f : fonts) {
    EXPECT_EQ(f.font.lfHeight, -83);
    EXPECT_EQ(f.font.lfWeight, 400);
    EXPECT_STREQ(f.font.lfFaceName, f.face);
    EXPECT_EQ(f.font.lfPitchAndFamily, f.pitch_and_family);
  }
}

}  // namespace
}  // namespace quillo
