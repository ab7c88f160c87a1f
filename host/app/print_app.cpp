#include "host/app/print_app.h"

#include <cstdio>
#include <filesystem>
#include <map>
#include <optional>

#include "host/app/app_program.h"
#include "host/base/com_apartment.h"
#include "host/base/failure.h"
#include "host/base/text.h"
#include "host/installation/installation.h"
#include "host/printer/printer_setup.h"
#include "host/printer/printer_values.h"
#include "host/printing/print_job.h"
#include "host/printing/printer_command.h"

namespace quillo::host {

namespace {

namespace fs = std::filesystem;

constexpr wchar_t kRecorderFile[] = L"quillo-app.drv";
constexpr wchar_t kDevice[] = L"quillo-app.drv,NUL:";  // as the profile names driver and port

/// Makes Wine's GDI ask the recorder for the printer's DCs. It hands out Wine's own driver to
/// programs that no print host has started.
void InstallRecorder() {
  PrintSystem system;
  const fs::path source = DriverFile().parent_path() / kRecorderFile;
  const fs::path target = system.DriverFolder() / kRecorderFile;
  if (!PrintSystem::HasSameContent(source, target)) {
    // An earlier one may be in use.
    const fs::path copy = fs::path(target) += L".new";
    system.PutFile(source, copy);
    system.Rename(copy, target);
    system.WriteNote(DescribePart({PartKind::kFile, kRecorderFile}), {});
  }
  if (!WriteProfileStringW(L"devices", kPrinterName, kDevice)) {
    throw SystemFailure("cannot name the recorder of the printer", "WriteProfileString");
  }
  // On that port GDI asks for a file at each document.
  const std::wstring printer =
      std::wstring(L"System\\CurrentControlSet\\Control\\Print\\Printers\\") + kPrinterName;
  RegSetKeyValueW(HKEY_LOCAL_MACHINE, printer.c_str(), L"Port", REG_SZ, kNullPort, sizeof(L"NUL:"));
  if (system.DefaultPrinter() != kPrinterName) system.MakeDefault(kPrinterName);
}

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

fs::path FolderOf(const Options& options, int document) {
  if (document == 1) return options.output;
  char name[32];
  std::snprintf(name, sizeof name, "document-%04d", document);
  return options.output / name;
}

/// Prints the program's documents. Throws UnreadableInput where it does not print.
ExitCode PrintDocuments(const Options& options, AppProgram& program, const DriverModule& driver,
                        Console& console) {
  ExitCode result = kPrinted;
  int count = 0;
  while (auto document = program.NextDocument()) {
    ++count;
    Options own = options;
    own.output = FolderOf(options, count);
    if (count > 1) {
      own.pdf.clear();
      console.PageDone("document " + std::to_string(count) + ": " + ToUtf8(document->name) +
                       " -> " + ToUtf8(own.output.wstring()));
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
  try {
    const ComApartment apartment;
    EnsurePrinter(kPrinterName, options.dpi, UserSizes(options));
    StoreSettings(options);
    InstallRecorder();
    const DriverModule driver(DriverFile().wstring());
    std::optional<AppProgram> program;
    try {
      program.emplace(*options.app, options.dpi, driver, console);
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
