#include "base/windows.h"

#include <cstdlib>
#include <cwchar>
#include <exception>
#include <string>
#include <variant>
#include <vector>

#include "host/app/print_app.h"
#include "host/base/processor.h"
#include "host/base/text.h"
#include "host/cli/command_line.h"
#include "host/client/client_main.h"
#include "host/printer/printer_setup.h"
#include "host/printer/printer_values.h"
#include "host/printing/console.h"
#include "host/printing/print_job.h"
#include "host/printing/printer_command.h"
#include "host/printing/program.h"

namespace quillo::host {
namespace {

/// quillo-print --client-mode FAULT PDF: what ClientProcess starts.
int RunClientMode(wchar_t** arguments) {
  const auto fault = ParseClientFault(ToUtf8(arguments[0]));
  return RunClient(fault.value_or(ClientFault::kNone), arguments[1]);
}

int RunCommand(const std::vector<std::string>& arguments) {
  const std::variant<Options, Answer> parsed =
      ParseCommandLine(arguments, StoredCustomPapers(kPrinterName));
  if (const auto* answer = std::get_if<Answer>(&parsed)) {
    Console().Write(answer->text,
                    answer->exit_code == kPrinted ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
    return answer->exit_code;
  }
  const Options& options = std::get<Options>(parsed);
  Console console(options.quiet);
  try {
    if (options.app) return PrintApp(options, console);
    if (options.inputs.empty()) return SetUpPrinter(options, console);
    return Print(options, console);
  } catch (const std::exception& failure) {  // out of memory and the like
    console.Problem(std::string("gave up: ") + failure.what());
    return kDriverFailed;
  }
}

}  // namespace
}  // namespace quillo::host

int wmain(int count, wchar_t** arguments) {
  using namespace quillo::host;
  const ServersProcessorScope processor(std::getenv("QUILLO_PROCESSOR"));
  if (count == 4 && std::wcscmp(arguments[1], L"--client-mode") == 0) {
    return RunClientMode(arguments + 2);
  }
  return RunCommand(ArgumentsOf(count, arguments));
}
