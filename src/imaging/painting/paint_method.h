#pragma once

#include <cstdint>

#include "imaging/pixels/row_format.h"

namespace quillo::imaging {

// Display-mode flags.
constexpr uint32_t kModePage = 0x0021;          // page bitmaps; no painter tests the two bits
constexpr uint32_t kModeResetTable = 0x0004;    // newly set: the display table becomes identity
constexpr uint32_t kModeDither = 0x0008;        // dither to devices of few colours
constexpr uint32_t kModeGreyScale = 0x0010;     // 1-bit bitmaps in grey levels
constexpr uint32_t kModeTwoColours = 0x0040;    // 1-bit bitmaps by the two-colour painters
constexpr uint32_t kModeDitherTo256 = 0x0080;   // dither to 8-bit devices too
constexpr uint32_t kModeColourCube = 0x0100;    // 8-bit devices: the 6 x 6 x 6 colour cube
constexpr uint32_t kModeKeepRedFirst = 0x0800;  // 24 bits, red first: by the device's order

/// How a bitmap gets onto a device.
enum class PaintMethod {
  kAsIs = 0,
  kConvert = 1,           // to a depth and colour order that GDI draws
  kDither = 2,            // to the device's colour depth
  kGreyBlackOnWhite = 3,  // 1 bit, in grey levels
  kGreyWhiteOnBlack = 4,
  kTwoBlackOnWhite = 5,  // 1 bit, two-colour painters
  kTwoWhiteOnBlack = 6,
};

/// Colours of a device of this many bits per pixel, in classes: 1, 4, 8 or 24 bits.
constexpr uint32_t QuantizeDepth(uint32_t bits) {
  if (bits < 4) return 1;
  if (bits < 8) return 4;
  return bits < 16 ? 8 : 24;
}

/// Whether a bitmap has grey levels; bitmaps with a palette do not count.
bool IsGrey(const RowFormat& bitmap);

/// The method for a device of `depth` (QuantizeDepth) that takes 24-bit pixels in `device_order`.
PaintMethod ChoosePaintMethod(const RowFormat& bitmap, uint32_t depth, uint32_t device_order,
                              uint32_t mode);

}  // namespace quillo::imaging
