#pragma once

#include "base/windows.h"

#include <cstddef>
#include <cstdint>

#include "config/device_mode/private_part.h"

// The device mode of this driver. Nothing in this room fails.
namespace quillo {

/// What an application, the spooler and the job's records carry.
struct DeviceMode {
  DEVMODEW pub;
  PrivatePart own;
};
static_assert(sizeof(DEVMODEW) == 220 && sizeof(DeviceMode) == 1052);
static_assert(offsetof(DeviceMode, own.margins_given) == 492);
static_assert(offsetof(DeviceMode, own.margin_unit) == 1016);
static_assert(offsetof(DeviceMode, own.top) == 1020 && offsetof(DeviceMode, own.left) == 1028);
static_assert(offsetof(DeviceMode, own.right) == 1036 && offsetof(DeviceMode, own.bottom) == 1044);

/// Bytes after the public members.
inline constexpr uint16_t kDriverExtra = sizeof(PrivatePart);
inline constexpr uint16_t kSpecVersion = 0x0401;
inline constexpr uint16_t kDriverVersion = 0x0400;

/// The dmFields of this driver's device modes: what it takes from a caller's.
inline constexpr DWORD kModeFields = DM_ORIENTATION | DM_PAPERSIZE | DM_COPIES | DM_DEFAULTSOURCE |
                                     DM_PRINTQUALITY | DM_COLOR | DM_BITSPERPEL;

/// Whether `mode` carries this driver's version numbers and sizes. Reads the public members only.
bool HasOwnShape(const DEVMODEW& mode);

/// The settings that a device starts from. Without a `device_name` it is "VORNIX Quillo 6"; a
/// longer name is cut to what dmDeviceName holds.
void BuildDefaultDeviceMode(DeviceMode& mode, const wchar_t* device_name);

/// Dots per inch, the same for both axes, from print quality and y resolution.
int32_t ResolutionOf(const DEVMODEW& mode);

}  // namespace quillo
