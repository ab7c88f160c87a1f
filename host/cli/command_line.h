#pragma once

#include <string>
#include <variant>
#include <vector>

#include "host/printing/options.h"

namespace quillo::host {

/// The command line asks for nothing to be printed.
struct Answer {
  int exit_code;     // 0: help or version; 2: it is wrong
  std::string text;  // for standard output when the exit code is 0, else for standard error
};

/// `arguments` without the program's name, in UTF-8.
///
/// --paper, --landscape and --portrait hold for the inputs that follow them; behind the last input,
/// for every input that has none of its own. A path that begins with "/" is one of the Unix system
/// that Wine runs on.
/// `stored_papers` are the printer's custom papers.
std::variant<Options, Answer> ParseCommandLine(const std::vector<std::string>& arguments,
                                               const std::vector<NamedSheet>& stored_papers = {});

}  // namespace quillo::host
