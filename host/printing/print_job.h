#pragma once

#include <memory>
#include <string>

#include "host/engine/driver_module.h"
#include "host/inputs/input.h"
#include "host/printing/console.h"
#include "host/printing/exit_code.h"
#include "host/printing/options.h"

namespace quillo::host {

/// Prints the inputs as one job and collects its results. Reports problems on the console; returns
/// the worst of them.
ExitCode Print(const Options& options, Console& console);

/// Prints one document of a program that runs, as a job of its own. The printer is set up. Reports
/// and returns as Print does.
ExitCode PrintDocument(const Options& options, Console& console, const DriverModule& driver,
                       const std::string& program, std::unique_ptr<PrintInput> document);

/// The file of the driver, beside this program. Throws SystemFailure.
std::filesystem::path DriverFile();

}  // namespace quillo::host
