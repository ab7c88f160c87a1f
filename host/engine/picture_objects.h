#pragma once

#include "base/ddi.h"

#include <optional>

#include "host/engine/drawing.h"
#include "host/engine/services/colors.h"
#include "host/engine/services/surfaces.h"

namespace quillo::host {

/// A picture as a driver gets it: a surface and the translation of its colours to the page's.
///
/// Drivers take the channels of 16- and 32-bit surfaces to lie as in 5-5-5 and 8-8-8; a picture
/// with other masks is converted first, so that no colour is lost. Bits that are missing are zero.
class PictureObjects {
 public:
  /// `picture` must outlive this object; its bits are used in place where they can be.
  explicit PictureObjects(const BitmapSource& picture);

  SURFOBJ* Source() { return &*surface_; }
  XLATEOBJ* Translation() { return &*translation_; }

 private:
  BitmapSource converted_;
  std::optional<Surface> surface_;
  std::optional<XlateObject> translation_;
};

}  // namespace quillo::host
