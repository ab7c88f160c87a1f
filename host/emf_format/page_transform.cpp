#include "host/emf_format/page_transform.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace quillo::host::emf {

namespace {

// Mapping modes by the numbers of SetMapMode.
enum MapMode : uint32_t {
  kText = 1,
  kLoMetric,
  kHiMetric,
  kLoEnglish,
  kHiEnglish,
  kTwips,
  kIsotropic,
  kAnisotropic,
};

int32_t Clamp(double value) {
  return static_cast<int32_t>(std::clamp(value, -2147483647.0, 2147483647.0));
}

/// side · multiply / divide, but never 0: like GDI, keeps the sign and at least one unit.
int32_t ScaleSide(int32_t side, int32_t multiply, int32_t divide) {
  const int64_t scaled = int64_t{side} * multiply / divide;
  if (scaled != 0) return Clamp(static_cast<double>(scaled));
  return (side < 0) != ((multiply < 0) != (divide < 0)) ? -1 : 1;
}

}  // namespace

PageTransform::PageTransform(SizeL device_pixels, SizeL device_millimetres)
    : device_pixels_(device_pixels), device_millimetres_(device_millimetres) {}

bool PageTransform::ExtentsAreFree() const { return mode_ == kIsotropic || mode_ == kAnisotropic; }

bool PageTransform::SetMapMode(uint32_t mode) {
  switch (mode) {
    case kText:
      window_extent_ = viewport_extent_ = {1, 1};
      break;
    case kLoMetric:
    case kIsotropic:
      SetPhysical(10);
      break;
    case kHiMetric:
      SetPhysical(100);
      break;
    case kLoEnglish:
      SetPhysical(100 / 25.4);
      break;
    case kHiEnglish:
      SetPhysical(1000 / 25.4);
      break;
    case kTwips:
      SetPhysical(1440 / 25.4);
      break;
    case kAnisotropic:
      break;  // keeps the previous mode's extents
    default:
      return false;
  }
  mode_ = mode;
  return true;
}

/// Units of a physical size, y upwards.
void PageTransform::SetPhysical(double units_per_millimetre) {
  window_extent_ = {Clamp(std::round(device_millimetres_.x * units_per_millimetre)),
                    Clamp(std::round(device_millimetres_.y * units_per_millimetre))};
  window_extent_.x = std::max(window_extent_.x, 1);
  window_extent_.y = std::max(window_extent_.y, 1);
  viewport_extent_ = {device_pixels_.x, -device_pixels_.y};
}

bool PageTransform::SetExtent(SizeL& extent, SizeL value) {
  if (!ExtentsAreFree()) return true;
  if (value.x == 0 || value.y == 0) return false;
  extent = value;
  KeepProportions();
  return true;
}

bool PageTransform::ScaleExtent(SizeL& extent, PointL multiply, PointL divide) {
  if (!ExtentsAreFree()) return true;
  if (multiply.x == 0 || multiply.y == 0 || divide.x == 0 || divide.y == 0) return false;
  return SetExtent(extent, {ScaleSide(extent.x, multiply.x, divide.x),
                            ScaleSide(extent.y, multiply.y, divide.y)});
}

/// MM_ISOTROPIC: shortens the side of the viewport whose units are physically larger.
void PageTransform::KeepProportions() {
  if (mode_ != kIsotropic) return;
  const auto unit = [](double viewport, double window, double millimetres, double pixels) {
    return std::fabs(viewport * millimetres / (pixels * window));
  };
  const double x =
      unit(viewport_extent_.x, window_extent_.x, device_millimetres_.x, device_pixels_.x);
  const double y =
      unit(viewport_extent_.y, window_extent_.y, device_millimetres_.y, device_pixels_.y);
  const auto cut = [](int32_t side, double ratio) {
    const int32_t rounded = Clamp(std::floor(side * ratio + 0.5));
    return rounded != 0 ? rounded : (side < 0 ? -1 : 1);
  };
  if (x > y) viewport_extent_.x = cut(viewport_extent_.x, y / x);
  if (y > x) viewport_extent_.y = cut(viewport_extent_.y, x / y);
}

Transform PageTransform::ToDevice() const {
  const double x = static_cast<double>(viewport_extent_.x) / window_extent_.x;
  const double y = static_cast<double>(viewport_extent_.y) / window_extent_.y;
  return {x,
          0,
          0,
          y,
          viewport_origin_.x - window_origin_.x * x,
          viewport_origin_.y - window_origin_.y * y};
}

}  // namespace quillo::host::emf
