#pragma once

#include "host/printing/console.h"
#include "host/printing/exit_code.h"
#include "host/printing/options.h"

namespace quillo::host {

/// Prints the inputs as one job and collects its results. Problems are told on the console; the
/// answer is the worst of them.
ExitCode Print(const Options& options, Console& console);

}  // namespace quillo::host
