#pragma once

#include "base/ddi.h"

#include "host/engine/drawing.h"

namespace quillo::host {

/// Bytes of a run-length picture once it is expanded; 0 for any other picture.
double ExpandedBytes(const BitmapSource& picture);

/// Bytes of a picture that StretchPart makes; each of its pixels costs the work of at least one.
double StretchedBytes(const BitmapSource& source, SIZEL size);

/// The pictures that calls of one page may be broken down into: a bit more than the pixels of its
/// sheet. Without a bound, small files could ask for pages of gigabytes.
class PictureBudget {
 public:
  explicit PictureBudget(SIZEL sheet);

  /// Whether a picture of so many bytes is within the budget.
  bool Allows(double bytes) const { return spent_ + bytes <= limit_; }
  /// Counts a picture, unless it exceeds the budget.
  bool Spend(double bytes) {
    if (!Allows(bytes)) return false;
    spent_ += bytes;
    return true;
  }

 private:
  double limit_;  // bytes
  double spent_ = 0;
};

}  // namespace quillo::host
