#pragma once

#include "base/ddi.h"

#include <cstdint>

#include "driver/device/device.h"

namespace quillo {

/// A width in world units as device pixels: scaled by the transform's m11 when there is a
/// transform, rounded half up, saturated.
int32_t DeviceWidth(float width, XFORMOBJ* transform);

/// Records the brush of a pen and then the pen. Without attributes (null) no pen is recorded;
/// without a brush a cosmetic pen is black.
///
/// Compatibility: a miter limit below 1 becomes 1 in the caller's own attributes too; callers may
/// read it back.
void WritePen(DEVICE_PDEV& device, LINEATTRS* attributes, XFORMOBJ* transform, BRUSHOBJ* brush);

}  // namespace quillo
