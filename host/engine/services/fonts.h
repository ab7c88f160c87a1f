#pragma once

#include "base/ddi.h"

#include <cstddef>
#include <string>
#include <vector>

#include "host/engine/services/transforms.h"

namespace quillo::host {

/// The names of a font, which follow its IFIMETRICS.
struct FontNames {
  std::wstring family;
  std::wstring style;
  std::wstring face;  // full name
};

/// A realised font with the public FONTOBJ in front.
class FontObject : public FONTOBJ {
 public:
  /// `transform` maps font units (y upwards) to device pixels. Fills in the offsets and sizes
  /// inside `metrics` from `names`.
  FontObject(const IFIMETRICS& metrics, const FontNames& names, const XFORML& transform,
             FLONG font_type = FO_TYPE_TRUETYPE);
  FontObject(const FontObject&) = delete;
  FontObject& operator=(const FontObject&) = delete;

  XformObject& Transform() { return transform_; }
  IFIMETRICS* Metrics() { return reinterpret_cast<IFIMETRICS*>(block_.data()); }

 private:
  XformObject transform_;
  std::vector<std::byte> block_;  // IFIMETRICS, then the names, each with its terminator
};

}  // namespace quillo::host
