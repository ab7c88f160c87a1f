#pragma once

#include "base/windows.h"

#include "config/device_mode/device_mode.h"

namespace quillo {

/// Takes over from the caller's device mode what this device honours. A null `caller` changes
/// nothing. Of another driver's device mode only the public members up to dmYResolution are read,
/// and none after its dmSize, which count as not given; one of this driver contributes its device
/// name and private part as well.
void MergeDeviceMode(DeviceMode& mode, const DEVMODEW* caller);

}  // namespace quillo
