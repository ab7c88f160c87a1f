#include "host/client/client_process.h"

#include <chrono>

#include "host/base/failure.h"
#include "host/base/text.h"

namespace quillo::host {

namespace {

constexpr char kCannotStart[] = "cannot start the client process";
constexpr auto kStartLimit = std::chrono::seconds(60);
// How long a client may be silent once its input has ended, in milliseconds: it may have to draw a
// page of its PDF file.
constexpr ULONGLONG kSilenceLimit = 120'000;

/// A pipe whose one end a child process inherits.
struct Pipe {
  KernelHandle read;
  KernelHandle write;
};

Pipe MakePipe(bool child_reads) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  Pipe pipe;
  if (!CreatePipe(pipe.read.Receive(), pipe.write.Receive(), &inherited, 0) ||
      !SetHandleInformation((child_reads ? pipe.write : pipe.read).Get(), HANDLE_FLAG_INHERIT, 0)) {
    throw SystemFailure(kCannotStart, "CreatePipe");
  }
  return pipe;
}

/// The folder is the process's current one, so that its name need not pass a command line.
KernelHandle StartProcess(const std::filesystem::path& program, const std::wstring& arguments,
                          const std::filesystem::path& folder, HANDLE input, HANDLE output) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = input;
  startup.hStdOutput = output;
  startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION info{};
  std::wstring command = L"\"" + program.wstring() + L"\" " + arguments;
  // Wine now and then loses a process while it starts, and reports this error.
  for (int tries_left = 3;
       !CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, TRUE, DETACHED_PROCESS,
                       nullptr, folder.c_str(), &startup, &info);) {
    if (GetLastError() != ERROR_INTERNAL_ERROR || --tries_left == 0) {
      throw SystemFailure(kCannotStart, "CreateProcess");
    }
  }
  const KernelHandle thread(info.hThread);
  return KernelHandle(info.hProcess);
}

}  // namespace

ClientProcess::ClientProcess(const std::filesystem::path& program,
                             const std::filesystem::path& folder, const std::filesystem::path& pdf,
                             ClientFault fault)
    : type_library_(LoadTypeLibrary(program)) {
  Pipe input = MakePipe(true);
  Pipe output = MakePipe(false);
  // A file name has no quotes.
  const std::wstring arguments =
      L"--client-mode " + ToWide(NameOf(fault)) + L" \"" + pdf.wstring() + L"\"";
  process_ = StartProcess(program, arguments, std::filesystem::absolute(folder), input.read.Get(),
                          output.write.Get());
  input_ = std::move(input.write);
  output_ = std::move(output.read);
  // The client's own ends are closed here: otherwise its output would never end.
  output.write.Reset();
  input.read.Reset();

  reader_ = std::thread([this] { ReadLines(output_.Get()); });
}

void ClientProcess::Serve(DWORD job_id) {
  const std::string line = std::to_string(job_id) + "\n";
  DWORD written = 0;
  WriteFile(input_.Get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
  const bool in_time = is_ready_.wait_for(kStartLimit) == std::future_status::ready;
  if (in_time && is_ready_.get()) return;
  TerminateProcess(process_.Get(), 1);
  throw SystemFailure(kCannotStart, "waiting for the client",
                      in_time ? ERROR_PROCESS_ABORTED : ERROR_TIMEOUT);
}

ClientProcess::~ClientProcess() {
  if (reader_.joinable()) Finish();
}

ClientReport ClientProcess::Finish() {
  input_.Reset();
  heard_ = GetTickCount64();
  while (WaitForSingleObject(process_.Get(), 1000) == WAIT_TIMEOUT) {
    if (GetTickCount64() - heard_ > kSilenceLimit) TerminateProcess(process_.Get(), 1);
  }
  reader_.join();
  return std::move(report_);
}

void ClientProcess::ReadLines(HANDLE output) {
  std::string text;
  char buffer[4096];
  DWORD read = 0;
  while (ReadFile(output, buffer, sizeof buffer, &read, nullptr) && read != 0) {
    heard_ = GetTickCount64();
    text.append(buffer, read);
    for (size_t end; (end = text.find('\n')) != std::string::npos; text.erase(0, end + 1)) {
      TakeLine(text.substr(0, end));
    }
  }
  if (!ready_known_) ready_.set_value(false);
}

void ClientProcess::TakeLine(const std::string& line) {
  auto message = nlohmann::ordered_json::parse(line, nullptr, false);
  if (!message.is_object()) return;
  if (message.contains("ready") && !ready_known_) {
    ready_known_ = true;
    ready_.set_value(true);
  }
  if (message.contains("call")) report_.calls.push_back(std::move(message["call"]));
  if (message.contains("pdf")) report_.pdf = std::move(message["pdf"]);
  if (message.contains("job_end_event")) report_.job_end_event = message["job_end_event"] == true;
}

}  // namespace quillo::host
