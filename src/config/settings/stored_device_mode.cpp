#include "config/settings/stored_device_mode.h"

#include "config/platform/platform.h"
#include "config/settings/printer_info.h"

namespace quillo {

namespace {

constexpr wchar_t kDeviceData[] = L"DEVICE DATA";

bool IsDone(SettingsResult result) { return result == SETTINGS_OK || result == SETTINGS_SIZE_ONLY; }

/// The stored value, or what the spooler holds as the printer's default; of any shape.
bool ReadStoredOrSpooled(HANDLE printer, DeviceMode& mode) {
  const PrinterSettings settings(printer);
  ValueBuffer value = BufferFor(mode);
  if (ReadDeviceData(settings, &value) == SETTINGS_OK && value.type == REG_BINARY &&
      value.size == sizeof(mode)) {
    return true;
  }
  const PrinterInfo<PRINTER_INFO_2W> info(printer, 2);
  if (!info || info->pDevMode == nullptr || !HasOwnShape(*info->pDevMode)) return false;
  mode = *reinterpret_cast<const DeviceMode*>(info->pDevMode);
  return true;
}

}  // namespace

SettingsResult WriteDeviceData(const PrinterSettings& settings, const DeviceMode& mode) {
  const Bytes bytes = std::as_bytes(std::span(&mode, 1));
  if (IsAdministrator()) {
    settings.WriteStore(kDeviceData, REG_BINARY, bytes, SettingsStore::kMachine);
  }
  return settings.WriteStore(kDeviceData, REG_BINARY, bytes, SettingsStore::kUser);
}

SettingsResult ReadDeviceData(const PrinterSettings& settings, ValueBuffer* value) {
  const SettingsResult users = settings.ReadStore(kDeviceData, value, SettingsStore::kUser);
  if (IsDone(users)) return users;
  const SettingsResult machines = settings.ReadStore(kDeviceData, value, SettingsStore::kMachine);
  if (machines == SETTINGS_OK) {
    settings.WriteStore(kDeviceData, REG_BINARY,
                        Bytes(static_cast<const std::byte*>(value->data), value->size),
                        SettingsStore::kUser);
  }
  return machines;
}

bool LoadStoredDeviceMode(HANDLE printer, DeviceMode& mode) {
  DeviceMode stored = {};
  if (!ReadStoredOrSpooled(printer, stored) || !HasOwnShape(stored.pub)) return false;
  mode = stored;
  return true;
}

}  // namespace quillo
