#pragma once

#include "base/windows.h"

#include "config/device_mode.h"

namespace quillo {

/// The printer's stored default device mode. False, with `mode` untouched, when there is none of
/// this driver's shape.
bool LoadStoredDeviceMode(HANDLE printer, DeviceMode& mode);

}  // namespace quillo
