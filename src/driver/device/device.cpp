#include "driver/device/device.h"

namespace quillo {

namespace {

/// Windows never maps anything below this address, so a smaller number is no record.
constexpr uintptr_t kMinAddress = 0x10000;

bool IsLiving(const DEVICE_PDEV* device) {
  const auto address = reinterpret_cast<uintptr_t>(device);
  return address >= kMinAddress && address % alignof(DEVICE_PDEV) == 0 &&
         device->signature == kDeviceSignature && device->closing_signature == kDeviceSignature;
}

}  // namespace

DEVICE_PDEV* FindDevice(DHPDEV handle) {
  auto* device = reinterpret_cast<DEVICE_PDEV*>(handle);
  if (IsLiving(device)) return device;
  SetLastError(ERROR_INVALID_PARAMETER);
  return nullptr;
}

DEVICE_PDEV* FindDevice(const SURFOBJ* surface) {
  return FindDevice(surface != nullptr ? surface->dhpdev : nullptr);
}

}  // namespace quillo
