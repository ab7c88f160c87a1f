#include "host/client/client_main.h"

#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

#include "base/com_owners.h"
#include "base/system_owners.h"
#include "host/base/com_apartment.h"
#include "host/client/client_object.h"
#include "host/client/connection_file.h"
#include "host/client/job_end_event.h"
#include "host/client/pdf_maker.h"
#include "host/client/type_library.h"

namespace quillo::host {

namespace {

using Json = nlohmann::ordered_json;

/// False when the line cannot be written: nobody reads it any more.
bool WriteLine(DWORD stream, const std::string& text) {
  const std::string line = text + "\n";
  DWORD written = 0;
  return WriteFile(GetStdHandle(stream), line.data(), static_cast<DWORD>(line.size()), &written,
                   nullptr) != FALSE;
}

void Send(const Json& message) {
  static std::mutex one_at_a_time;
  const std::lock_guard lock(one_at_a_time);
  WriteLine(STD_OUTPUT_HANDLE, message.dump(-1, ' ', false, Json::error_handler_t::replace));
}

/// The number in the first line of the input; nothing when the input ends before.
std::optional<DWORD> ReadJobId() {
  std::string line;
  char next = 0;
  DWORD read = 0;
  while (ReadFile(GetStdHandle(STD_INPUT_HANDLE), &next, 1, &read, nullptr) && read != 0) {
    if (next == '\n') return std::strtoul(line.c_str(), nullptr, 10);
    line += next;
  }
  return std::nullopt;
}

void WaitForEndOfInput() {
  char buffer[64];
  DWORD read = 0;
  while (ReadFile(GetStdHandle(STD_INPUT_HANDLE), buffer, sizeof buffer, &read, nullptr) &&
         read != 0) {
  }
}

void ServeJob(ClientFault fault, const std::filesystem::path& pdf_path) {
  const ComApartment apartment;
  const ComPtr<ITypeLib> type_library = RegisterTypeLibrary();
  const std::optional<DWORD> job_id = ReadJobId();
  if (!job_id) return;
  const KernelHandle job_end = MakeJobEndEvent(*job_id);
  std::optional<PdfMaker> pdf;
  if (!pdf_path.empty()) pdf.emplace(pdf_path, [](int page) { Send({{"pdf_page", page}}); });
  const ComPtr<ClientObject> client(
      new ClientObject(std::filesystem::current_path(), fault, [&pdf](const Json& call) {
        Send({{"call", call}});
        if (pdf) pdf->Hear(call, std::filesystem::current_path());
      }));
  {
    const ConnectionFile connection(*job_id, *client.Get());
    Send({{"ready", true}});
    WaitForEndOfInput();
  }
  Send({{"job_end_event", WaitForSingleObject(job_end.Get(), 0) == WAIT_OBJECT_0}});
  if (pdf) Send({{"pdf", pdf->Finish()}});
}

}  // namespace

int RunClient(ClientFault fault, const std::filesystem::path& pdf) {
  try {
    ServeJob(fault, pdf);
    return 0;
  } catch (const std::exception& failure) {
    WriteLine(STD_ERROR_HANDLE, std::string("quillo-print: the client failed: ") + failure.what());
    return 1;
  }
}

}  // namespace quillo::host
