#pragma once

#include "base/windows.h"

#include <string>

#include "base/system_owners.h"

namespace quillo::host {

/// A job in the spooler's queue, from which the driver learns job id, printer and document names.
/// The driver sends the spooler no data: the job and its empty output are removed at the end.
class SpoolJob {
 public:
  /// Throws SystemFailure.
  SpoolJob(const std::wstring& printer, const std::wstring& document);
  ~SpoolJob();
  SpoolJob(const SpoolJob&) = delete;
  SpoolJob& operator=(const SpoolJob&) = delete;

  HANDLE Printer() const { return printer_.Get(); }
  DWORD Id() const { return id_; }

 private:
  PrinterHandle printer_;
  std::wstring output_;  // file for the spooler's output
  DWORD id_ = 0;
};

}  // namespace quillo::host
