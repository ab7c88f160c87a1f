#pragma once

#include "base/ddi.h"

#include <string>

#include "host/engine/driver_functions.h"
#include "host/engine/services/surfaces.h"

namespace quillo::host {

/// The printer of a device, as the spooler passes it to the driver.
struct PrinterPort {
  HANDLE printer = nullptr;  // from OpenPrinter; the caller keeps it open
  std::wstring device_name;  // name of the printer
  std::wstring log_address;  // name of the port
};

/// One enabled device with its surface: a DC on the printer. Created by DrvEnablePDEV,
/// DrvCompletePDEV and DrvEnableSurface, destroyed in the reverse order.
class PrintDevice {
 public:
  /// Enables and completes the device; no surface yet. `mode` may be null (the driver's default).
  /// Throws DriverFailure.
  PrintDevice(const DriverFunctions& driver, const PrinterPort& port, const DEVMODEW* mode);
  ~PrintDevice();
  PrintDevice(const PrintDevice&) = delete;
  PrintDevice& operator=(const PrintDevice&) = delete;

  /// Throws DriverFailure; the device then has no surface.
  void EnableSurface();

  DHPDEV Handle() const { return engine_device_.dhpdev; }
  /// Null before EnableSurface.
  ::quillo::host::Surface* Surface() const { return surface_; }
  const GDIINFO& Capabilities() const { return capabilities_; }
  const DEVINFO& Info() const { return info_; }

 private:
  const DriverFunctions& driver_;
  EngineDevice engine_device_;
  ::quillo::host::Surface* surface_ = nullptr;  // the driver's, until DrvDisableSurface
  GDIINFO capabilities_{};
  DEVINFO info_{};
};

}  // namespace quillo::host
