#pragma once

#include "host/cli/console.h"
#include "host/cli/exit_code.h"
#include "host/cli/options.h"

namespace quillo::host {

/// Stores the values and papers that the command line gives the printer. Throws what
/// StorePrinterValue and StoreCustomPaper do.
void StoreSettings(const Options& options);

/// A command without inputs: stores settings, and lists the papers when that is asked for.
ExitCode SetUpPrinter(const Options& options, Console& console);

}  // namespace quillo::host
