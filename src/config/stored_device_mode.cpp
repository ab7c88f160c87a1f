#include "config/stored_device_mode.h"

#include <winspool.h>

#include "base/kernel_owners.h"

namespace quillo {

bool LoadStoredDeviceMode(HANDLE printer, DeviceMode& mode) {
  DWORD size = 0;
  GetPrinterW(printer, 2, nullptr, 0, &size);
  if (size == 0) return false;
  const HeapBlock info(size);
  if (!info || !GetPrinterW(printer, 2, info.As<BYTE>(), size, &size)) return false;
  const DEVMODEW* stored = info.As<PRINTER_INFO_2W>()->pDevMode;
  if (stored == nullptr || !HasOwnShape(*stored)) return false;
  mode = *reinterpret_cast<const DeviceMode*>(stored);
  return true;
}

}  // namespace quillo
