#include "driver/capabilities.h"

#include "base/text.h"

namespace quillo {

namespace {

constexpr ULONG kGdiInfoVersion = 0x500;

/// No Béziers: the engine flattens curves before it calls.
constexpr FLONG kGraphicsCaps = GCAPS_GEOMETRICWIDE | GCAPS_ALTERNATEFILL | GCAPS_WINDINGFILL |
                                GCAPS_HALFTONE | GCAPS_COLOR_DITHER | GCAPS_OPAQUERECT |
                                GCAPS_MONO_DITHER | GCAPS_DITHERONREALIZE;
static_assert(kGraphicsCaps == 0x0020053E);

/// All of TC_OP_CHARACTER to TC_SO_ABLE.
constexpr ULONG kTextCaps = 0x1FFF;

constexpr LONG kDefaultFontPoints = 10;

static_assert(HT_PATSIZE_4x4_M == 3 && HT_PATSIZE_16x16_M == 15);

/// The halftone cell (always its _M variant) for devices below a number of dots per inch.
constexpr struct {
  uint32_t below_dpi;
  ULONG pattern_size;
} kHalftoneCells[] = {
    {180, HT_PATSIZE_4x4_M},    {400, HT_PATSIZE_6x6_M},    {900, HT_PATSIZE_8x8_M},
    {1200, HT_PATSIZE_10x10_M}, {1800, HT_PATSIZE_12x12_M}, {2400, HT_PATSIZE_14x14_M},
};

ULONG HalftonePatternSize(uint32_t dpi) {
  for (const auto& cell : kHalftoneCells) {
    if (dpi < cell.below_dpi) return cell.pattern_size;
  }
  return HT_PATSIZE_16x16_M;
}

LOGFONTW DefaultFont(const DEVICE_PDEV& device, BYTE pitch_and_family, const wchar_t* face) {
  LOGFONTW font = {};
  font.lfHeight = -MulDiv(kDefaultFontPoints, static_cast<int>(device.resolution.y), 72);
  font.lfWeight = FW_NORMAL;
  font.lfPitchAndFamily = pitch_and_family;
  CopyPadded(font.lfFaceName, face, LF_FACESIZE);
  return font;
}

}  // namespace

GDIINFO DescribeGraphics(const DEVICE_PDEV& device) {
  const auto [width, height] = device.sheet.pixels.printable;
  const auto [width_mm, height_mm] = device.sheet.millimetres.printable;
  const Extent sheet = device.sheet.pixels.size;

  GDIINFO info = {};
  info.ulVersion = kGdiInfoVersion;
  info.ulTechnology = DT_RASPRINTER;
  info.ulHorzSize = static_cast<ULONG>(width_mm);
  info.ulVertSize = static_cast<ULONG>(height_mm);
  info.ulHorzRes = static_cast<ULONG>(width);
  info.ulVertRes = static_cast<ULONG>(height);
  info.cBitsPixel = 24;
  info.cPlanes = 1;
  info.ulNumColors = static_cast<ULONG>(-1);
  info.ulLogPixelsX = device.resolution.x;
  info.ulLogPixelsY = device.resolution.y;
  info.flTextCaps = kTextCaps;
  info.ulAspectX = 100;
  info.ulAspectY = 100;
  info.ulAspectXY = 141;
  info.xStyleStep = 1;
  info.yStyleStep = 1;
  info.denStyleStep = 3;
  info.ptlPhysOffset = device.physical_offset;
  info.szlPhysSize = {sheet.width, sheet.height};
  info.ciDevice.Red = {6700, 3300, 0};
  info.ciDevice.Green = {2100, 7100, 0};
  info.ciDevice.Blue = {1400, 800, 0};
  info.ciDevice.AlignmentWhite = {3127, 3290, 0};
  info.ciDevice.RedGamma = 20000;
  info.ciDevice.GreenGamma = 20000;
  info.ciDevice.BlueGamma = 20000;
  info.ulPrimaryOrder = PRIMARY_ORDER_CBA;
  info.ulHTPatternSize = HalftonePatternSize(device.resolution.x);
  info.ulHTOutputFormat = HT_FORMAT_24BPP;
  info.flHTFlags = HT_FLAG_ADDITIVE_PRIMS;
  return info;
}

DEVINFO DescribeDevice(const DEVICE_PDEV& device) {
  DEVINFO info = {};
  info.flGraphicsCaps = kGraphicsCaps;
  info.lfDefaultFont = DefaultFont(device, FF_MODERN | FIXED_PITCH, L"Courier");
  info.lfAnsiVarFont = DefaultFont(device, FF_SWISS | VARIABLE_PITCH, L"Helvetica");
  info.lfAnsiFixFont = DefaultFont(device, FF_MODERN | FIXED_PITCH, L"Courier");
  info.iDitherFormat = BMF_24BPP;
  info.hpalDefault = device.palette;
  return info;
}

}  // namespace quillo
