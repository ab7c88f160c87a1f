#pragma once

#include "host/printing/console.h"
#include "host/printing/exit_code.h"
#include "host/printing/options.h"

namespace quillo::host {

/// Prints the inputs as one job and collects its results. Reports problems on the console; returns
/// the worst of them.
ExitCode Print(const Options& options, Console& console);

}  // namespace quillo::host
