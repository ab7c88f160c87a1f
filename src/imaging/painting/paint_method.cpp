#include "imaging/painting/paint_method.h"

namespace quillo::imaging {
namespace {

PaintMethod ChooseFor1Bit(const RowFormat& bitmap, uint32_t depth, uint32_t mode) {
  const bool dithers = (mode & kModeDither) != 0 && (mode & kModeDitherTo256) != 0;
  const bool grey = (mode & kModeGreyScale) != 0 && depth >= 2;
  if (!grey && (mode & kModeTwoColours) == 0) {
    return dithers && depth == 8 ? PaintMethod::kDither : PaintMethod::kAsIs;
  }
  switch (TestTwoColours(bitmap.palette)) {
    case TwoColours::kBlackOnWhite:
      return grey ? PaintMethod::kGreyBlackOnWhite : PaintMethod::kTwoBlackOnWhite;
    case TwoColours::kWhiteOnBlack:
      return grey ? PaintMethod::kGreyWhiteOnBlack : PaintMethod::kTwoWhiteOnBlack;
    case TwoColours::kOther:
      break;
  }
  return dithers && depth <= 8 ? PaintMethod::kDither : PaintMethod::kAsIs;
}

/// Whether to dither: the device has fewer colours than 8 bits (with kModeDitherTo256: or as many).
bool DithersToFew(uint32_t depth, uint32_t mode) {
  if ((mode & kModeDither) == 0) return false;
  return (mode & kModeDitherTo256) != 0 ? depth <= 8 : depth < 8;
}

PaintMethod ChooseFor4Bits(const RowFormat& bitmap, uint32_t depth, uint32_t mode) {
  if ((mode & kModeDither) == 0) return PaintMethod::kAsIs;
  const bool dithers = depth == 4 ? !IsDefaultPalette(bitmap.palette, 16)
                                  : depth < 4 || ((mode & kModeDitherTo256) != 0 && depth <= 8);
  return dithers ? PaintMethod::kDither : PaintMethod::kAsIs;
}

PaintMethod ChooseFor8Bits(const RowFormat& bitmap, uint32_t depth, uint32_t mode) {
  if (!DithersToFew(depth, mode)) return PaintMethod::kAsIs;
  const bool has_device_colours = depth == 8 && IsDefaultPalette(bitmap.palette, 256);
  return has_device_colours ? PaintMethod::kAsIs : PaintMethod::kDither;
}

PaintMethod ChooseFor24Bits(const RowFormat& bitmap, uint32_t depth, uint32_t device_order,
                            uint32_t mode) {
  if ((mode & kModeDither) != 0 && depth <= 8) return PaintMethod::kDither;
  if (bitmap.order == kOrderExtended) return PaintMethod::kConvert;
  if (bitmap.order == kOrderRedFirst && (mode & kModeKeepRedFirst) == 0) {
    return PaintMethod::kConvert;
  }
  return bitmap.order != device_order ? PaintMethod::kConvert : PaintMethod::kAsIs;
}

}  // namespace

bool IsGrey(const RowFormat& bitmap) { return bitmap.bits > 8 && bitmap.order == kOrderGrey; }

PaintMethod ChoosePaintMethod(const RowFormat& bitmap, uint32_t depth, uint32_t device_order,
                              uint32_t mode) {
  switch (bitmap.bits) {
    case 1:
      return ChooseFor1Bit(bitmap, depth, mode);
    case 4:
      return ChooseFor4Bits(bitmap, depth, mode);
    case 8:
      return ChooseFor8Bits(bitmap, depth, mode);
    case 12:
    case 16:
      if (!IsGrey(bitmap)) return PaintMethod::kAsIs;
      return DithersToFew(depth, mode) ? PaintMethod::kDither : PaintMethod::kConvert;
    case 24:
      return ChooseFor24Bits(bitmap, depth, device_order, mode);
    case 32:
      return PaintMethod::kAsIs;
    case 48:
    case 64:
      return (mode & kModeDither) != 0 && depth <= 8 ? PaintMethod::kDither : PaintMethod::kConvert;
    default:  // 2, 3, 5, 6, 7
      return DithersToFew(depth, mode) ? PaintMethod::kDither : PaintMethod::kConvert;
  }
}

}  // namespace quillo::imaging
