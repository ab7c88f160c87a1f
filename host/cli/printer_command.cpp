#include "host/cli/printer_command.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "config/paper_geometry.h"
#include "host/base/failure.h"
#include "host/printer/paper_names.h"
#include "host/printer/printer_setup.h"
#include "host/printer/printer_values.h"

namespace quillo::host {

namespace {

/// "    9  A4                    210 x 297 mm        8.27 x 11.69 in    standard"
std::string PaperLine(const std::string& name, const Sheet& sheet, int dpi, const char* origin) {
  const DeviceMode mode = MakeDeviceMode(kPrinterName, sheet, dpi);
  const Extent tenths = SheetSize(mode, PaperUnit::kTenthsOfMillimetre);
  char numbers[160];
  std::snprintf(numbers, sizeof numbers, "%6.1f x %6.1f mm  %6.2f x %6.2f in  %s\n",
                tenths.width / 10.0, tenths.height / 10.0, tenths.width / 254.0,
                tenths.height / 254.0, origin);
  char number[16];
  std::snprintf(number, sizeof number, "%5d  ", sheet.paper);
  std::string padded = name;
  padded.resize(std::max<size_t>(name.size(), 20), ' ');
  return number + padded + "  " + numbers;
}

void ListPapers(const Options& options, Console& console) {
  for (const PaperName& known : PaperNames()) {
    console.Write(
        PaperLine(std::string(known.name), {.paper = known.paper}, options.dpi, "standard"));
  }
  for (const NamedSheet& paper : StoredCustomPapers(kPrinterName)) {
    console.Write(PaperLine(paper.name, paper.sheet, options.dpi, "custom"));
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
  } catch (const SystemFailure& failure) {
    console.Problem(failure.what());
    return kDriverFailed;
  }
}

}  // namespace quillo::host
