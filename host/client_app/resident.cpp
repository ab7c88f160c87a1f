#include "host/client_app/resident.h"

#include <algorithm>
#include <iterator>
#include <lmcons.h>
#include <winspool.h>

#include "host/installation/installation.h"

namespace quillo::host {

namespace {

/// The names of the printers that have this product's driver.
std::vector<std::wstring> OwnPrinters() {
  constexpr DWORD kKinds = PRINTER_ENUM_LOCAL | PRINTER_ENUM_CONNECTIONS;
  DWORD size = 0, count = 0;
  EnumPrintersW(kKinds, nullptr, 2, nullptr, 0, &size, &count);
  std::vector<BYTE> block(size);
  std::vector<std::wstring> names;
  if (!EnumPrintersW(kKinds, nullptr, 2, block.data(), size, &size, &count)) return names;
  const auto* printers = reinterpret_cast<const PRINTER_INFO_2W*>(block.data());
  for (DWORD i = 0; i < count; ++i) {
    if (printers[i].pDriverName != nullptr && printers[i].pPrinterName != nullptr &&
        _wcsicmp(printers[i].pDriverName, kDriverName) == 0) {
      names.emplace_back(printers[i].pPrinterName);
    }
  }
  return names;
}

/// Calls `visit` with each job in a printer's queue.
template <typename Visit>
void ForEachJob(std::wstring printer, Visit visit) {
  PrinterHandle handle;
  if (!OpenPrinterW(printer.data(), handle.Receive(), nullptr)) return;
  constexpr DWORD kMost = 1000;
  DWORD size = 0, count = 0;
  EnumJobsW(handle.Get(), 0, kMost, 1, nullptr, 0, &size, &count);
  std::vector<BYTE> block(size);
  if (!EnumJobsW(handle.Get(), 0, kMost, 1, block.data(), size, &size, &count)) return;
  const auto* jobs = reinterpret_cast<const JOB_INFO_1W*>(block.data());
  std::for_each(jobs, jobs + count, visit);
}

}  // namespace

std::vector<DWORD> WaitingJobs() {
  wchar_t user[UNLEN + 1] = {};
  DWORD size = UNLEN + 1;
  std::vector<DWORD> ids;
  if (!GetUserNameW(user, &size)) return ids;
  for (const std::wstring& printer : OwnPrinters()) {
    ForEachJob(printer, [&](const JOB_INFO_1W& job) {
      if (job.pUserName != nullptr && _wcsicmp(job.pUserName, user) == 0) ids.push_back(job.JobId);
    });
  }
  return ids;
}

bool IsQueued(DWORD job_id) {
  bool queued = false;
  for (const std::wstring& printer : OwnPrinters()) {
    ForEachJob(printer, [&](const JOB_INFO_1W& job) { queued = queued || job.JobId == job_id; });
  }
  return queued;
}

void Resident::Step() {
  std::erase_if(running_, [](const auto& client) {
    return WaitForSingleObject(client.second.Get(), 0) == WAIT_OBJECT_0;
  });
  const std::vector<DWORD> jobs = jobs_();
  std::erase_if(served_, [&](DWORD job) { return std::ranges::find(jobs, job) == jobs.end(); });
  for (const DWORD job : jobs) {
    if (running_.size() >= limit_) return;
    if (served_.contains(job) || running_.contains(job)) continue;
    KernelHandle process = start_(job);
    if (!process) continue;
    served_.insert(job);
    running_.emplace(job, std::move(process));
  }
}

}  // namespace quillo::host
