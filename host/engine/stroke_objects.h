#pragma once

#include "base/ddi.h"

#include <vector>

#include "host/engine/drawing.h"
#include "host/engine/services/transforms.h"

namespace quillo::host {

/// Line attributes and transform of a pen for the length of one call.
class StrokeObjects {
 public:
  explicit StrokeObjects(const PenDescription& pen);
  StrokeObjects(const StrokeObjects&) = delete;
  StrokeObjects& operator=(const StrokeObjects&) = delete;

  LINEATTRS* Attributes() { return &attributes_; }
  XFORMOBJ* Transform() { return &transform_; }

 private:
  XformObject transform_;
  std::vector<FLOAT_LONG> style_;
  LINEATTRS attributes_{};
};

/// How far a pen can draw beside its path, in device pixels: half its width, and what joins and
/// caps add.
double Reach(const PenDescription& pen);

}  // namespace quillo::host
