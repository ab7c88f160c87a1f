#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

#include "host/printing/console.h"

namespace quillo::host {

/// The arguments of a program's wmain but for its name, as UTF-8.
std::vector<std::string> ArgumentsOf(int count, wchar_t** arguments);

/// Parses the arguments, then calls `run`. Answers --help and --version itself. Returns the exit
/// code: that of `run`, or that of its failure, after a sentence on standard error.
int RunProgram(CLI::App& app, std::vector<std::string> arguments, Console& console,
               const std::function<int()>& run);

}  // namespace quillo::host
