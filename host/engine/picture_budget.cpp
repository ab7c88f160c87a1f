#include "host/engine/picture_budget.h"

#include <algorithm>

#include "host/engine/blit_areas.h"

namespace quillo::host {
namespace {

constexpr double kMaxSheets = 1.5;
constexpr double kMinLimit = 128 << 20;  // bytes, however small the sheet
constexpr double kSheetBytesPerPixel = 3;

}  // namespace

PictureBudget::PictureBudget(SIZEL sheet)
    : limit_(std::max(kMaxSheets * kSheetBytesPerPixel * PixelCount(sheet), kMinLimit)) {}

double ExpandedBytes(const BitmapSource& picture) {
  if (!picture.run_length) return 0;
  return static_cast<double>(picture.Stride()) * picture.height;
}

double StretchedBytes(const BitmapSource& source, SIZEL size) {
  return PixelCount(size) * std::clamp<int>(source.bits_per_pixel, 8, 24) / 8;
}

}  // namespace quillo::host
