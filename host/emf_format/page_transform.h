#pragma once

#include <cstdint>

#include "host/emf_format/geometry.h"
#include "host/emf_format/transform.h"

namespace quillo::host::emf {

/// The mapping mode of a DC with its window and viewport: from page space to the pixels of the
/// reference device.
class PageTransform {
 public:
  /// The reference device's size, for the modes with a physical unit. Both sides above 0.
  PageTransform(SizeL device_pixels, SizeL device_millimetres);

  /// MM_TEXT (1) to MM_ANISOTROPIC (8); false, and nothing changed, for other numbers.
  bool SetMapMode(uint32_t mode);

  void SetWindowOrigin(PointL origin) { window_origin_ = origin; }
  void SetViewportOrigin(PointL origin) { viewport_origin_ = origin; }

  // As in GDI, extents change in MM_ISOTROPIC and MM_ANISOTROPIC only; in other modes the calls do
  // nothing. False, and nothing changed, when a side or a divisor is 0.
  bool SetWindowExtent(SizeL extent) { return SetExtent(window_extent_, extent); }
  bool SetViewportExtent(SizeL extent) { return SetExtent(viewport_extent_, extent); }
  bool ScaleWindowExtent(PointL multiply, PointL divide) {
    return ScaleExtent(window_extent_, multiply, divide);
  }
  bool ScaleViewportExtent(PointL multiply, PointL divide) {
    return ScaleExtent(viewport_extent_, multiply, divide);
  }

  Transform ToDevice() const;

 private:
  bool ExtentsAreFree() const;
  bool SetExtent(SizeL& extent, SizeL value);
  bool ScaleExtent(SizeL& extent, PointL multiply, PointL divide);
  void SetPhysical(double units_per_millimetre);
  void KeepProportions();

  SizeL device_pixels_;
  SizeL device_millimetres_;
  uint32_t mode_ = 1;
  PointL window_origin_;
  PointL viewport_origin_;
  SizeL window_extent_{1, 1};
  SizeL viewport_extent_{1, 1};
};

}  // namespace quillo::host::emf
