#pragma once

#include "base/ddi.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "host/engine/graphics.h"
#include "host/engine/print_device.h"

namespace quillo::host {

/// One document on a printer, page after page, each on its own sheet.
///
/// Every failure throws DriverFailure. The session can then be destroyed, which ends an open
/// document with ED_ABORTDOC and destroys the device.
class PrintSession {
 public:
  /// Enables the device for the first page. `driver` and the printer must outlive the session.
  PrintSession(const DriverFunctions& driver, PrinterPort port, const DEVMODEW& first_mode);
  ~PrintSession();
  PrintSession(const PrintSession&) = delete;
  PrintSession& operator=(const PrintSession&) = delete;

  void StartDocument(const std::wstring& name, DWORD job_id);
  /// Opens a page on the sheet of `mode`. If that differs from the previous page's device mode, a
  /// new device takes over the document (DrvResetPDEV). The result lives until SendPage.
  Graphics& StartPage(const DEVMODEW& mode);
  void SendPage();
  void EndDocument();

  /// The current device; its capabilities have the printable size and the resolution.
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
