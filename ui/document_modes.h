#pragma once

#include "base/windows.h"

#include "config/device_mode/device_mode.h"

// Device modes as applications and the spooler get them. They are always whole and printable,
// whatever comes in: stored modes lie where users can write, and callers' modes come from files.
namespace quillo {

/// The settings that a document on a printer starts from: the stored ones, else the driver's.
/// Either argument may be null.
DeviceMode DocumentDefaults(HANDLE printer, const wchar_t* name);

/// Takes over from the caller's device mode what the driver honours (null: nothing). The device
/// name stays. Margins that leave no area to print on are dropped, and a paper without one is not
/// taken.
void TakeOver(DeviceMode& mode, const DEVMODEW* caller);

/// Writes `mode` to where the caller wants it; exactly sizeof(DeviceMode) bytes.
void CopyOut(const DeviceMode& mode, DEVMODEW* out);

}  // namespace quillo
