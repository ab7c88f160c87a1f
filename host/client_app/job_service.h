#pragma once

#include "base/windows.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/system_owners.h"

namespace quillo::host {

/// What a job has brought.
struct ServedJob {
  std::wstring document;
  std::vector<std::filesystem::path> pages;  // in order
  int lost_pages = 0;                        // announced, but not copied
  int driver_errors = 0;
  std::string pdf;  // PdfMaker's result as text; empty when no file was asked for
  bool pdf_failed = false;
  bool ended = false;  // whether the driver has ended it; else it was given up
};

/// Bounds for the waiting of a client.
struct Patience {
  /// Whether the spooler still has the job; nothing when it cannot tell.
  std::function<std::optional<bool>()> is_queued;
  DWORD idle_limit;  // milliseconds without a call, while nothing is known of the job
};

/// Whether a client serves the job already.
class JobClaim {
 public:
  /// Claims the job for this process for as long as it lives. Throws SystemFailure.
  explicit JobClaim(DWORD job_id);
  /// False when another process has it.
  explicit operator bool() const { return is_first_; }

 private:
  KernelHandle mutex_;
  bool is_first_ = false;
};

/// Serves one job: lets the driver find it, copies pages and fonts into `folder`, and returns when
/// the job has ended, has left the queue, or nothing was heard of it for too long. Unless `pdf` is
/// empty, it becomes a PDF file of the pages. `report` gets a line for each call. Throws
/// SystemFailure.
ServedJob ServeJob(DWORD job_id, const std::filesystem::path& folder,
                   const std::filesystem::path& pdf, const Patience& patience,
                   const std::function<void(const std::string&)>& report);

}  // namespace quillo::host
