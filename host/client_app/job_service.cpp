#include "host/client_app/job_service.h"

#include <atomic>
#include <mutex>

#include "base/com_owners.h"
#include "config/user/client_claim.h"
#include "host/base/com_apartment.h"
#include "host/base/failure.h"
#include "host/base/text.h"
#include "host/client/client_object.h"
#include "host/client/connection_file.h"
#include "host/client/job_end_event.h"
#include "host/client/pdf_maker.h"
#include "host/client/type_library.h"

namespace quillo::host {

namespace {

using Json = nlohmann::ordered_json;

constexpr DWORD kStep = 250;             // milliseconds
constexpr ULONGLONG kEndLimit = 10'000;  // from the job-end event to the last call
constexpr ULONGLONG kGoneLimit = 5'000;  // from leaving the queue

/// What the driver's calls say, which come on other threads.
class Listener {
 public:
  Listener(std::filesystem::path folder, const std::function<void(const std::string&)>& report)
      : folder_(std::move(folder)), report_(report) {}

  void Hear(const Json& call) {
    heard_ = GetTickCount64();
    const std::lock_guard lock(mutex_);
    report_(call.dump(-1, ' ', false, Json::error_handler_t::replace));
    const std::string method = call["method"];
    if (method == "NotifyJobStart") {
      job_.document = ToWide(call["document"].get<std::string>());
    } else if (method == "NotifyPage") {
      TakePage(call);
    } else if (method == "NotifyError") {
      ++job_.driver_errors;
    } else if (method == "NotifyJobEnd") {
      job_.ended = true;
      ended_ = true;
    }
  }

  ULONGLONG Heard() const { return heard_; }
  bool HasEnded() const { return ended_; }
  ServedJob Take() {
    const std::lock_guard lock(mutex_);
    return std::move(job_);
  }

 private:
  void TakePage(const Json& call) {
    if (!call.contains("file")) {
      ++job_.lost_pages;
      return;
    }
    job_.pages.push_back(folder_ / ToWide(call["file"].get<std::string>()));
  }

  const std::filesystem::path folder_;
  const std::function<void(const std::string&)>& report_;
  std::atomic<ULONGLONG> heard_ = GetTickCount64();
  std::atomic<bool> ended_ = false;
  std::mutex mutex_;
  ServedJob job_;
};

/// Returns when the job is over, in one way or another.
void WaitForEnd(HANDLE job_end, const Listener& listener, const Patience& patience) {
  bool was_queued = false;
  ULONGLONG over_since = 0;  // 0: not yet
  while (!listener.HasEnded()) {
    const bool signalled = WaitForSingleObject(job_end, kStep) == WAIT_OBJECT_0;
    const ULONGLONG now = GetTickCount64();
    const std::optional<bool> queued = patience.is_queued();
    was_queued = was_queued || queued.value_or(false);
    // A job that has left the queue without a word was cancelled; one that was never seen there may
    // be in the queue of another machine.
    const bool gone = was_queued && queued == false;
    if ((signalled || gone) && over_since == 0) over_since = now;
    const ULONGLONG quiet_since = std::max(over_since, listener.Heard());
    if (over_since != 0 && now - quiet_since > (signalled ? kEndLimit : kGoneLimit)) return;
    if (!queued.value_or(false) && now - listener.Heard() > patience.idle_limit) return;
    if (signalled) Sleep(kStep / 10);
  }
}

}  // namespace

JobClaim::JobClaim(DWORD job_id) {
  wchar_t name[64];
  wsprintfW(name, kClientClaim, job_id);
  mutex_.Reset(CreateMutexW(nullptr, FALSE, name));
  const bool existed = GetLastError() == ERROR_ALREADY_EXISTS;
  if (!mutex_) throw SystemFailure("cannot claim the job", "CreateMutex");
  is_first_ = !existed;
}

ServedJob ServeJob(DWORD job_id, const std::filesystem::path& folder,
                   const std::filesystem::path& pdf_path, const Patience& patience,
                   const std::function<void(const std::string&)>& report) {
  const ComApartment apartment;
  const ComPtr<ITypeLib> type_library = RegisterTypeLibrary();
  const KernelHandle job_end = MakeJobEndEvent(job_id);
  Listener listener(folder, report);
  std::optional<PdfMaker> pdf;
  if (!pdf_path.empty()) pdf.emplace(pdf_path, [](int /*page*/) {});
  const ComPtr<ClientObject> client(
      new ClientObject(folder, ClientFault::kNone, [&](const Json& call) {
        if (pdf) pdf->Hear(call, folder);
        listener.Hear(call);
      }));
  {
    const ConnectionFile connection(job_id, *client.Get());
    WaitForEnd(job_end.Get(), listener, patience);
  }
  ServedJob job = listener.Take();
  if (pdf) {
    const Json result = pdf->Finish();
    job.pdf = result.dump(-1, ' ', false, Json::error_handler_t::replace);
    job.pdf_failed = result.contains("error");
  }
  return job;
}

}  // namespace quillo::host
