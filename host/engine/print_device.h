#pragma once

#include "base/ddi.h"

#include <memory>
#include <string>
#include <vector>

#include "host/engine/driver_functions.h"
#include "host/engine/graphics.h"

namespace quillo::host {

/// The printer behind a device, as the spooler hands it to the driver.
struct PrinterPort {
  HANDLE printer = nullptr;  // from OpenPrinter; the caller keeps it open
  std::wstring device_name;  // name of the printer
  std::wstring log_address;  // name of the port
};

/// One enabled device with its surface: a DC on the printer. Made by EnablePDEV, CompletePDEV and
/// EnableSurface, undone in the opposite order, also when a step in between fails.
class PrintDevice {
 public:
  /// Enables and completes the device; no surface yet. `mode` may be null (the driver's default).
  /// Throws DriverFailure.
  PrintDevice(const DriverFunctions& driver, const PrinterPort& port, const DEVMODEW* mode);
  ~PrintDevice();
  PrintDevice(const PrintDevice&) = delete;
  PrintDevice& operator=(const PrintDevice&) = delete;

  /// Throws DriverFailure.
  void EnableSurface();

  DHPDEV Handle() const { return dhpdev_; }
  /// Null before EnableSurface.
  SURFOBJ* Surface() const { return surface_; }
  const GDIINFO& Capabilities() const { return capabilities_; }
  const DEVINFO& Info() const { return info_; }

 private:
  struct EngineDevice;

  const DriverFunctions& driver_;
  std::unique_ptr<EngineDevice> engine_device_;  // what the driver knows as HDEV
  DHPDEV dhpdev_ = nullptr;
  SURFOBJ* surface_ = nullptr;
  GDIINFO capabilities_{};
  DEVINFO info_{};
};

/// One document on a printer, page after page, each on its own sheet.
///
/// Every failure throws DriverFailure and leaves the session able to be destroyed: an open document
/// is then ended with ED_ABORTDOC, and the device is torn down.
class PrintSession {
 public:
  /// Enables the device for the first page. `driver` and the printer must outlive the session.
  PrintSession(const DriverFunctions& driver, PrinterPort port, const DEVMODEW& first_mode);
  ~PrintSession();
  PrintSession(const PrintSession&) = delete;
  PrintSession& operator=(const PrintSession&) = delete;

  void StartDocument(const std::wstring& name, DWORD job_id);
  /// Opens a page on the sheet of `mode`: when that is another device mode than the last page's, a
  /// new device takes the document over (DrvResetPDEV). The result lives until SendPage.
  Graphics& StartPage(const DEVMODEW& mode);
  void SendPage();
  void EndDocument();

  /// The device in force; its capabilities give the printable size and the resolution.
  const PrintDevice& Device() const { return *device_; }

 private:
  void Reset(const DEVMODEW& mode);

  const DriverFunctions& driver_;
  PrinterPort port_;
  std::vector<std::byte> mode_;  // device mode of device_, with its private part
  std::unique_ptr<PrintDevice> device_;
  std::unique_ptr<Graphics> page_;  // while a page is open
  bool document_open_ = false;
};

}  // namespace quillo::host
