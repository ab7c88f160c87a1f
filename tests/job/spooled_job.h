#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "host/client/client_fault.h"
#include "host/printer/spool_job.h"
#include "job/job.h"
#include "support/recording_client.h"

namespace quillo::test {

/// A job in the spooler, without a client at first. When it goes, everything that the driver's job
/// held must be gone.
class SpooledJob {
 public:
  SpooledJob();
  SpooledJob(const SpooledJob&) = delete;
  SpooledJob& operator=(const SpooledJob&) = delete;
  ~SpooledJob();

 protected:
  void Connect(host::ClientFault fault = host::ClientFault::kNone, bool in_session_folder = false) {
    client_.LeaveConnection(Id(), in_session_folder, fault);
  }
  DWORD Id() const { return spool_job_->Id(); }
  std::filesystem::path Connection(bool in_session_folder = false) const {
    return ConnectionPath(Id(), in_session_folder);
  }
  std::filesystem::path FontsFile() const {
    return TempFolder() + L"\\" + std::to_wstring(Id()) + L".fpt";
  }

  /// Opens the driver's job, for A4 at 300 dots per inch.
  CQloPrinter* Open();
  static void Send(CQloPrinter* job, uint32_t type, const void* payload, uint32_t size);
  static void Close(CQloPrinter* job);

  /// Files in the TEMP folder that pages and jobs make.
  static int LeftFiles();

  RecordingClient client_;
  std::optional<host::SpoolJob> spool_job_;
  int files_before_ = 0;

 private:
  DWORD heaps_before_ = 0;
};

}  // namespace quillo::test
