#include "host/printing/printer_command.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string>

#include "config/papers/paper_geometry.h"
#include "host/printer/paper_names.h"
#include "host/printer/printer_setup.h"
#include "host/printer/printer_values.h"

namespace quillo::host {

namespace {

/// "    9  A4                    210 x 297 mm        8.27 x 11.69 in    standard"
/// `size` in tenths of a millimetre.
std::string PaperLine(const std::string& name, int paper, Extent size, const char* origin) {
  char numbers[160];
  std::snprintf(numbers, sizeof numbers, "%6.1f x %6.1f mm  %6.2f x %6.2f in  %s\n",
                size.width / 10.0, size.height / 10.0, size.width / 254.0, size.height / 254.0,
                origin);
  char number[16];
  std::snprintf(number, sizeof number, "%5d  ", paper);
  std::string padded = name;
  padded.resize(std::max<size_t>(name.size(), 20), ' ');
  return number + padded + "  " + numbers;
}

void ListPapers(const Options& options, Console& console) {
  for (const PaperName& known : PaperNames()) {
    const DeviceMode mode = MakeDeviceMode(kPrinterName, {.paper = known.paper}, options.dpi);
    console.Write(PaperLine(std::string(known.name), known.paper, ResolveSheet(mode).tenths.size,
                            "standard"));
  }
  for (const auto& [name, sheet] : StoredCustomPapers(kPrinterName)) {
    console.Write(PaperLine(name, sheet.paper, {sheet.width, sheet.height}, "custom"));
  }
}

}  // namespace

void StoreSettings(const Options& options) {
  for (const PrinterValue& value : options.printer_values) StorePrinterValue(kPrinterName, value);
  for (const NamedSheet& paper : options.custom_papers) StoreCustomPaper(kPrinterName, paper);
}

ExitCode SetUpPrinter(const Options& options, Console& console) {
  try {
    EnsurePrinter(kPrinterName, options.dpi, {});
    StoreSettings(options);
    if (options.list_papers) ListPapers(options, console);
    return kPrinted;
  } catch (const std::runtime_error& failure) {  // the spooler or the registry
    console.Problem(failure.what());
    return kDriverFailed;
  }
}

}  // namespace quillo::host
