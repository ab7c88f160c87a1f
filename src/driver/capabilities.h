#pragma once

#include "base/ddi.h"

#include "driver/device/device.h"

namespace quillo {

/// The raster that the engine draws on: a 24-bit colour raster printer of the device's resolution
/// and sheet.
GDIINFO DescribeGraphics(const DEVICE_PDEV& device);

/// The drawing capabilities, default fonts and palette of the device.
DEVINFO DescribeDevice(const DEVICE_PDEV& device);

}  // namespace quillo
