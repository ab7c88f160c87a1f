#pragma once

#include "base/ddi.h"

#include <vector>

#include "host/engine/services/paths.h"

namespace quillo::host {

/// A clip with the public CLIPOBJ in front.
class ClipObject : public CLIPOBJ {
 public:
  /// Trivial (nothing is cut off) or a rectangle.
  ClipObject(BYTE complexity, const RECTL& bounds);
  /// Complex: the inside of `outline`, by the alternate rule.
  ClipObject(const RECTL& bounds, std::vector<PathRun> outline);

  const std::vector<PathRun>& Outline() const { return outline_; }

 private:
  std::vector<PathRun> outline_;
};

}  // namespace quillo::host
