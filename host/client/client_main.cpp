#include "host/client/client_main.h"

#include <filesystem>
#include <string>

#include "base/com_owners.h"
#include "base/system_owners.h"
#include "host/base/com_apartment.h"
#include "host/base/failure.h"
#include "host/client/client_object.h"
#include "host/client/connection_file.h"
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
  WriteLine(STD_OUTPUT_HANDLE, message.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void WaitForEndOfInput() {
  char buffer[64];
  DWORD read = 0;
  while (ReadFile(GetStdHandle(STD_INPUT_HANDLE), buffer, sizeof buffer, &read, nullptr) &&
         read != 0) {
  }
}

KernelHandle MakeJobEndEvent(DWORD job_id) {
  // Compatibility: the driver's name for it has a blank before "version", which clients rely on.
  wchar_t name[80];
  wsprintfW(name, L"Global\\VORNIXQUILLO5_JOB_END%d version%d", job_id, 5);
  KernelHandle event(CreateEventW(nullptr, TRUE, FALSE, name));
  if (!event) throw SystemFailure("cannot make the job-end event", "CreateEvent");
  return event;
}

void ServeJob(DWORD job_id, ClientFault fault) {
  const ComApartment apartment;
  RegisterTypeLibrary();
  const KernelHandle job_end = MakeJobEndEvent(job_id);
  const ComPtr<ClientObject> client(
      new ClientObject(std::filesystem::current_path(), fault, [](const Json& call) {
        Send({{"call", call}});
      }));
  {
    const ConnectionFile connection(job_id, *client.Get());
    Send({{"ready", true}});
    WaitForEndOfInput();
  }
  CoDisconnectObject(client.Get(), 0);
  Send({{"job_end_event", WaitForSingleObject(job_end.Get(), 0) == WAIT_OBJECT_0}});
}

}  // namespace

int RunClient(DWORD job_id, ClientFault fault) {
  try {
    ServeJob(job_id, fault);
    return 0;
  } catch (const std::exception& failure) {
    WriteLine(STD_ERROR_HANDLE, std::string("quillo-print: the client failed: ") + failure.what());
    return 1;
  }
}

}  // namespace quillo::host
