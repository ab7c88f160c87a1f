#pragma once

#include "base/windows.h"

#include <cstddef>
#include <cstdint>

namespace quillo {

/// Bytes behind the public members of this driver's device mode.
inline constexpr uint16_t kDriverExtra = 832;

/// The device mode of this driver: what an application, the spooler and the job's records carry.
struct DeviceMode {
  DEVMODEW pub;                          // 220 bytes
  std::byte private_part[kDriverExtra];  // margins block at its end, the rest zero
};
static_assert(sizeof(DEVMODEW) == 220);
static_assert(sizeof(DeviceMode) == 1052);

inline constexpr uint16_t kSpecVersion = 0x0401;
inline constexpr uint16_t kDriverVersion = 0x0400;

/// Whether `mode` carries this driver's version numbers and sizes. Reads the public members only.
bool HasOwnShape(const DEVMODEW& mode);

/// The settings that a device starts from. A null `device_name` gives "VORNIX Quillo 6"; a longer
/// name is cut to what dmDeviceName holds.
void BuildDefaultDeviceMode(DeviceMode& mode, const wchar_t* device_name);

/// Dots per inch, the same for both axes, from print quality and y resolution.
int32_t ResolutionOf(const DEVMODEW& mode);

}  // namespace quillo
