#include "host/app/print_app.h"

#include <filesystem>
#include <map>
#include <optional>

#include "host/app/app_program.h"
#include "host/app/recorder_setup.h"
#include "host/base/com_apartment.h"
#include "host/base/failure.h"
#include "host/base/platform.h"
#include "host/base/text.h"
#include "host/printer/printer_setup.h"
#include "host/printer/printer_values.h"
#include "host/printing/print_job.h"
#include "host/printing/printer_command.h"
#include "host/printing/result_folder.h"

namespace quillo::host {

namespace {

namespace fs = std::filesystem;

/// The sizes of the papers that programs may choose and that are not standard forms.
std::map<int, PaperSize> UserSizes(const Options& options) {
  std::map<int, PaperSize> sizes;
  const auto add = [&sizes](const SheetChoice& sheet) {
    if (sheet.paper >= DMPAPER_USER) sizes[sheet.paper] = {sheet.width, sheet.height};
  };
  for (const NamedSheet& paper : StoredCustomPapers(kPrinterName)) add(paper.sheet);
  for (const NamedSheet& paper : options.custom_papers) add(paper.sheet);
  if (options.app->sheet) add(*options.app->sheet);
  return sizes;
}

/// Prints the program's documents. Throws UnreadableInput where it does not print.
ExitCode PrintDocuments(const Options& options, AppProgram& program, const DriverModule& driver,
                        Console& console) {
  ExitCode result = kPrinted;
  int count = 0;
  while (auto document = program.NextDocument()) {
    ++count;
    Options own = options;
    if (count > 1) {
      own.output /= ResultFolder::DocumentFolder(count);
      own.pdf.clear();
      console.PageDone("document " + std::to_string(count) + ": " + ToUtf8(document->name) +
                       " -> " + ToUtf8(own.output.generic_wstring()));
    }
    if (own.document.empty()) own.document = document->name;
    if (own.document.empty()) own.document = fs::path(options.app->program).filename().wstring();
    result = Worse(
        result, PrintDocument(own, console, driver, program.Name(), std::move(document->content)));
  }
  if (count == 0) throw UnreadableInput("ended without printing");
  return result;
}

}  // namespace

ExitCode PrintApp(const Options& options, Console& console) {
  if (!RunsUnderWine()) {
    console.Problem("--app works under Wine only; on Windows, print to the installed printer");
    return kDriverFailed;
  }
  try {
    const ComApartment apartment;
    EnsurePrinter(kPrinterName, options.dpi, UserSizes(options));
    StoreSettings(options);
    InstallRecorder(DriverFile().parent_path());
    const DriverModule driver(DriverFile().wstring());
    std::optional<AppProgram> program;
    try {
      program.emplace(*options.app, options.dpi, driver);
    } catch (const SystemFailure& failure) {
      console.Problem(failure.what());
      return kInputRefused;
    }
    try {
      return PrintDocuments(options, *program, driver, console);
    } catch (const UnreadableInput& refused) {
      console.Problem(program->Name() + " " + refused.what());
      return kInputRefused;
    }
  } catch (const std::runtime_error& failure) {  // the spooler or the driver
    console.Problem(failure.what());
    return kDriverFailed;
  }
}

}  // namespace quillo::host
