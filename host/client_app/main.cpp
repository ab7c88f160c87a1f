#include "base/windows.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <filesystem>
#include <optional>
#include <shlobj.h>
#include <string>
#include <vector>

#include "base/system_owners.h"
#include "host/base/failure.h"
#include "host/base/text.h"
#include "host/client_app/delivery.h"
#include "host/client_app/job_service.h"
#include "host/client_app/log.h"
#include "host/client_app/resident.h"
#include "host/printing/console.h"
#include "host/printing/exit_code.h"
#include "host/printing/program.h"
#include "version.h"

// quillo-client: takes what the driver makes of a job and puts it among the user's documents.
namespace quillo::host {
namespace {

namespace fs = std::filesystem;

constexpr size_t kMaxClients = 16;            // of the resident, at a time
constexpr DWORD kIdleLimit = 60 * 60 * 1000;  // milliseconds
constexpr DWORD kResidentStep = 500;          // milliseconds
constexpr wchar_t kStopEvent[] = L"Local\\QuilloClientStop";

struct ClientOptions {
  std::optional<DWORD> job;
  std::string output;  // empty: the user's documents
  std::string pdf;     // with an output folder; empty: no PDF file
  bool stop = false;
};

/// A folder of the user's own profile.
fs::path KnownFolder(const KNOWNFOLDERID& id, const char* what) {
  wchar_t* path = nullptr;
  const HRESULT result = SHGetKnownFolderPath(id, KF_FLAG_CREATE, nullptr, &path);
  fs::path folder = SUCCEEDED(result) ? path : L"";
  CoTaskMemFree(path);
  CheckResult(result, what, "SHGetKnownFolderPath");
  return folder;
}

Log UsersLog() {
  return Log(KnownFolder(FOLDERID_LocalAppData, "cannot find the folder of the log") / L"Quillo" /
             L"client.log");
}

/// A folder for the pages of one job, removed at the end.
class WorkFolder {
 public:
  explicit WorkFolder(DWORD job_id)
      : path_(KnownFolder(FOLDERID_LocalAppData, "cannot find the user's folder") / L"Quillo" /
              (L"job " + std::to_wstring(job_id) + L"-" + std::to_wstring(GetCurrentProcessId()))) {
    fs::create_directories(path_);
  }
  ~WorkFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;
  const fs::path& Path() const { return path_; }

 private:
  fs::path path_;
};

ExitCode ResultOf(const ServedJob& job) {
  if (!job.ended || job.driver_errors != 0) return kDriverFailed;
  return job.lost_pages != 0 || job.pdf_failed ? kResultsLost : kPrinted;
}

ServedJob Serve(DWORD job_id, const fs::path& folder, const fs::path& pdf, const Log& log) {
  const std::string name = "job " + std::to_string(job_id) + ": ";
  ServedJob job = ServeJob(job_id, folder, pdf,
                           {[job_id] { return std::optional(IsQueued(job_id)); }, kIdleLimit},
                           [&](const std::string& call) { log.Write(name + call); });
  log.Write(name + (job.ended ? "ended, " : "given up, ") + std::to_string(job.pages.size()) +
            " pages, " + std::to_string(job.lost_pages) + " lost; PDF: " + job.pdf);
  return job;
}

ExitCode RunJob(const ClientOptions& options, const Log& log) {
  const JobClaim claim(*options.job);
  if (!claim) return kPrinted;  // another client has it
  if (!options.output.empty()) {
    const fs::path folder = fs::absolute(fs::path(ToWide(options.output)));
    fs::create_directories(folder);
    const fs::path pdf = options.pdf.empty() ? fs::path() : fs::absolute(ToWide(options.pdf));
    return ResultOf(Serve(*options.job, folder, pdf, log));
  }
  const WorkFolder work(*options.job);
  const fs::path pdf = work.Path() / L"document.pdf";
  const ServedJob job = Serve(*options.job, work.Path(), pdf, log);
  // Without a PDF file, the pages at least.
  const std::vector<fs::path> results = fs::exists(pdf) ? std::vector{pdf} : job.pages;
  const fs::path documents = KnownFolder(FOLDERID_Documents, "cannot find the user's documents");
  for (const fs::path& result : results) {
    log.Write("delivered " + ToUtf8(Deliver(result, documents, job.document).wstring()));
  }
  return ResultOf(job);
}

/// Starts this program for a job.
KernelHandle StartFor(DWORD job_id) {
  wchar_t program[MAX_PATH];
  if (GetModuleFileNameW(nullptr, program, MAX_PATH) == MAX_PATH) return KernelHandle();
  std::wstring command = L"\"" + std::wstring(program) + L"\" --job " + std::to_wstring(job_id);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started{};
  if (!CreateProcessW(program, command.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                      nullptr, &startup, &started)) {
    return KernelHandle();
  }
  const KernelHandle thread(started.hThread);
  return KernelHandle(started.hProcess);
}

/// Waits for jobs until it is told to stop. One in each session.
ExitCode RunResident(const Log& log) {
  const KernelHandle stop(CreateEventW(nullptr, TRUE, FALSE, kStopEvent));
  if (!stop) throw SystemFailure("cannot wait for jobs", "CreateEvent");
  if (GetLastError() == ERROR_ALREADY_EXISTS) return kPrinted;
  Resident resident(WaitingJobs, StartFor, kMaxClients);
  log.Write("waiting for jobs");
  while (WaitForSingleObject(stop.Get(), kResidentStep) == WAIT_TIMEOUT) resident.Step();
  log.Write("stopped");
  return kPrinted;
}

ExitCode StopResident() {
  const KernelHandle stop(OpenEventW(EVENT_MODIFY_STATE, FALSE, kStopEvent));
  if (stop) SetEvent(stop.Get());
  return kPrinted;
}

int Run(std::vector<std::string> arguments) {
  CLI::App app("Takes the pages of print jobs. Without --job: waits for the jobs of this user.",
               "quillo-client");
  app.allow_windows_style_options(false);
  app.set_help_flag("-h,--help", "Show this help");
  app.set_version_flag("--version", "quillo-client " QUILLO_VERSION);
  ClientOptions options;
  auto* job = app.add_option("--job", options.job, "Take one job, then end")
                  ->type_name("N")
                  ->check(CLI::Range(1u, 0x7FFFFFFFu));
  auto* output =
      app.add_option("-o,--output", options.output,
                     "Folder for pages and fonts; by default documents go to the user's documents")
          ->type_name("DIR")
          ->needs(job);
  app.add_option("--pdf", options.pdf, "PDF file of the pages, besides those in the folder")
      ->type_name("FILE")
      ->needs(output);
  app.add_flag("--stop", options.stop, "Stop the client that waits for jobs")->excludes(job);
  Console console(false, "quillo-client");
  return RunProgram(app, std::move(arguments), console, [&] {
    if (options.stop) return StopResident();
    const Log log = UsersLog();
    try {
      return options.job ? RunJob(options, log) : RunResident(log);
    } catch (const std::exception& failure) {
      log.Write(std::string("failed: ") + failure.what());
      throw;
    }
  });
}

}  // namespace
}  // namespace quillo::host

int wmain(int count, wchar_t** arguments) {
  return quillo::host::Run(quillo::host::ArgumentsOf(count, arguments));
}
