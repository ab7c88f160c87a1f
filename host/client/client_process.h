#pragma once

#include "base/windows.h"

#include <atomic>
#include <filesystem>
#include <future>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>

#include "base/com_owners.h"
#include "base/system_owners.h"
#include "host/client/client_fault.h"
#include "host/client/type_library.h"

namespace quillo::host {

/// What a client received.
struct ClientReport {
  nlohmann::ordered_json calls = nlohmann::ordered_json::array();  // as ClientObject reports them
  bool job_end_event = false;                                      // whether it was seen
  nlohmann::ordered_json pdf;  // PdfMaker's result; null without a PDF file
};

/// The client of one job as its parent sees it. The client copies pages and fonts into a folder
/// while the job runs.
class ClientProcess {
 public:
  /// Starts `program` as a client, which takes a while. `pdf`: the file that it makes of the pages;
  /// empty: none. Throws SystemFailure.
  ClientProcess(const std::filesystem::path& program, const std::filesystem::path& folder,
                const std::filesystem::path& pdf, ClientFault fault);
  /// Ends a client that still runs.
  ~ClientProcess();
  ClientProcess(const ClientProcess&) = delete;
  ClientProcess& operator=(const ClientProcess&) = delete;

  /// Tells the client its job and waits until it can be called. Throws SystemFailure.
  void Serve(DWORD job_id);
  /// Ends the client's input, which ends the client, and waits for it.
  ClientReport Finish();

 private:
  void ReadLines(HANDLE output);
  void TakeLine(const std::string& line);

  ComPtr<ITypeLib> type_library_;  // for the driver's calls
  KernelHandle process_;
  KernelHandle input_;                // the client's standard input; closing it ends the client
  KernelHandle output_;               // the client's standard output
  std::atomic<ULONGLONG> heard_ = 0;  // when it wrote last: GetTickCount64
  std::promise<bool> ready_;
  std::future<bool> is_ready_ = ready_.get_future();
  bool ready_known_ = false;  // whether ready_ has its value
  ClientReport report_;
  std::thread reader_;  // fills ready_ and report_
};

}  // namespace quillo::host
