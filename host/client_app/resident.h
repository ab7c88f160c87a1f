#pragma once

#include "base/windows.h"

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "base/system_owners.h"

namespace quillo::host {

/// The jobs of this user in the queues of this product's printers.
std::vector<DWORD> WaitingJobs();

/// Whether a queue of this product's printers has the job.
bool IsQueued(DWORD job_id);

/// Starts a client for each job that appears, a limited number at a time; the others wait. A client
/// that did not start is tried again.
class Resident {
 public:
  using Jobs = std::function<std::vector<DWORD>()>;
  using Start = std::function<KernelHandle(DWORD job_id)>;  // an empty handle: did not start

  Resident(Jobs jobs, Start start, size_t limit)
      : jobs_(std::move(jobs)), start_(std::move(start)), limit_(limit) {}

  /// Looks once: forgets clients that have ended and starts those of new jobs.
  void Step();
  [[nodiscard]] size_t Running() const { return running_.size(); }

 private:
  const Jobs jobs_;
  const Start start_;
  const size_t limit_;
  std::map<DWORD, KernelHandle> running_;  // by job
  std::set<DWORD> served_;                 // jobs that are still queued and had their client
};

}  // namespace quillo::host
