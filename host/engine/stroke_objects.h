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

/// How far from its path a pen can draw, in device pixels: half its width, plus joins and caps.
double Reach(const PenDescription& pen);

}  // namespace quillo::host
