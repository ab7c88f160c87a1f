#pragma once

#include "base/ddi.h"

#include <optional>

#include "host/engine/drawing.h"
#include "host/engine/services/colours.h"
#include "host/engine/services/surfaces.h"

namespace quillo::host {

/// A picture as a driver sees it: a surface and the translation of its colours to the page's.
///
/// Drivers assume 5-5-5 and 8-8-8 for the channels of 16- and 32-bit surfaces; a picture with other
/// masks is converted first, so that no colour is lost. Missing bits are zero.
class PictureObjects {
 public:
  /// `picture` must outlive this object; its bits are used in place where possible.
  explicit PictureObjects(const BitmapSource& picture);

  SURFOBJ* Source() { return &*surface_; }
  XLATEOBJ* Translation() { return &*translation_; }

 private:
  BitmapSource converted_;
  std::optional<Surface> surface_;
  std::optional<XlateObject> translation_;
};

}  // namespace quillo::host
