#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <optional>
#include <span>

#include "host/engine/drawing.h"

namespace quillo::host {

/// A raster operation that uses no brush, with the part of a picture that begins at `corner`.
struct RasterStep {
  const BitmapSource* picture;  // not run-length coded
  POINTL corner;
  uint8_t rop3;
};

/// A picture of this size that, blended over any destination, has the same effect as all steps in
/// sequence: 32 bits a pixel, transparent where the destination stays. Nothing if a pixel would
/// have to mix with its destination.
///
/// A mask and the picture that shows through it are typical steps: SRCAND with black where the
/// picture is, SRCPAINT with black around it.
std::optional<BitmapSource> JoinSteps(std::span<const RasterStep> steps, SIZEL size);

}  // namespace quillo::host
