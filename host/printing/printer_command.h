#pragma once

#include "host/printing/console.h"
#include "host/printing/exit_code.h"
#include "host/printing/options.h"

namespace quillo::host {

/// Stores the printer values and papers of the command line. Throws what StorePrinterValue and
/// StoreCustomPaper do.
void StoreSettings(const Options& options);

/// Runs a command without inputs: stores settings, and lists the papers if asked to.
ExitCode SetUpPrinter(const Options& options, Console& console);

}  // namespace quillo::host
