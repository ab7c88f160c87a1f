#pragma once

#include "host/printing/console.h"
#include "host/printing/exit_code.h"
#include "host/printing/options.h"

namespace quillo::host {

/// Runs a Windows program and prints what it prints, each document as a job: the first into the
/// output folder, others into "document-0002" and so on there. Nothing of the program is left
/// running. Reports problems on the console; returns the worst of them.
ExitCode PrintApp(const Options& options, Console& console);

}  // namespace quillo::host
