#pragma once

#include "host/printing/console.h"
#include "host/printing/exit_code.h"
#include "host/printing/options.h"

namespace quillo::host {

/// Stores the values and papers that the command line gives the printer. Throws what
/// StorePrinterValue and StoreCustomPaper do.
void StoreSettings(const Options& options);

/// A command without inputs: stores settings, and lists the papers when that is asked for.
ExitCode SetUpPrinter(const Options& options, Console& console);

}  // namespace quillo::host
