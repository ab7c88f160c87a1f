#pragma once

#include "base/windows.h"

#include "config/device_mode/device_mode.h"
#include "config/settings/printer_settings.h"

namespace quillo {

/// Stores a printer's default device mode: for the machine when this user is an administrator, then
/// for the user. Returns the result of the user's store.
SettingsResult WriteDeviceData(const PrinterSettings& settings, const DeviceMode& mode);

/// Reads a printer's stored default device mode unchecked: the user's, else the machine's, which is
/// then copied to the user's store. The buffer of `value` takes sizeof(DeviceMode).
SettingsResult ReadDeviceData(const PrinterSettings& settings, ValueBuffer* value);

/// The printer's default device mode: the stored one, else the spooler's. False, with `mode`
/// untouched, when that is missing or not of this driver's shape.
bool LoadStoredDeviceMode(HANDLE printer, DeviceMode& mode);

}  // namespace quillo
