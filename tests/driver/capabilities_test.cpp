#include "driver/capabilities.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

DEVICE_PDEV Device(short paper, short dpi) {
  DEVICE_PDEV device = {};
  BuildDefaultDeviceMode(device.mode, nullptr);
  device.mode.pub.dmPaperSize = paper;
  device.mode.pub.dmPrintQuality = device.mode.pub.dmYResolution = dpi;
  device.resolution = {static_cast<uint32_t>(dpi), static_cast<uint32_t>(dpi)};
  return device;
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
