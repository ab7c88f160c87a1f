#pragma once

#include "host/cli/console.h"
#include "host/cli/exit_code.h"
#include "host/cli/options.h"

namespace quillo::host {

/// Prints the inputs as one job and collects its results. Problems are told on the console; the
/// answer is the worst of them.
ExitCode Print(const Options& options, Console& console);

}  // namespace quillo::host
