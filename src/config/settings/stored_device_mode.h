#pragma once

#include "base/windows.h"

#include "config/device_mode/device_mode.h"
#include "config/settings/printer_settings.h"

namespace quillo {

/// Stores a printer's default device mode: for this user, and when that is an administrator for the
/// whole machine first. The result is that of the user's store.
SettingsResult WriteDeviceData(const PrinterSettings& settings, const DeviceMode& mode);

/// Reads a printer's stored default device mode as it stands: the user's, else the machine's, which
/// is then kept as the user's, too. `type` and `size` of `value` tell what was read; its buffer
/// takes sizeof(DeviceMode).
SettingsResult ReadDeviceData(const PrinterSettings& settings, ValueBuffer* value);

/// The printer's stored default device mode: the settings' own, else the spooler's. False, with
/// `mode` untouched, when that is missing or not of this driver's shape.
bool LoadStoredDeviceMode(HANDLE printer, DeviceMode& mode);

}  // namespace quillo
