#include "base/windows.h"

#include <cstdio>
#include <cwchar>

#include "host/base/text.h"
#include "host/client/client_main.h"

namespace quillo::host {
namespace {

/// quillo-print --client-mode JOB-ID FAULT: what ClientProcess starts.
int RunClientMode(wchar_t** arguments) {
  const auto fault = ParseClientFault(ToUtf8(arguments[1]));
  return RunClient(std::wcstoul(arguments[0], nullptr, 10), fault.value_or(ClientFault::kNone));
}

}  // namespace
}  // namespace quillo::host

int wmain(int count, wchar_t** arguments) {
  using namespace quillo::host;
  if (count == 4 && std::wcscmp(arguments[1], L"--client-mode") == 0) {
    return RunClientMode(arguments + 2);
  }
  return 0;
}
