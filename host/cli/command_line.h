#pragma once

#include <string>
#include <variant>
#include <vector>

#include "host/printing/options.h"

namespace quillo::host {

/// What the command answers instead of printing.
struct Answer {
  int exit_code;     // 0: help or version; 2: a wrong command line
  std::string text;  // for standard output when the exit code is 0, else for standard error
};

/// `arguments` without the program's name, in UTF-8.
///
/// --paper, --landscape and --portrait hold for the inputs that follow them; after the last input,
/// for every input that has none of its own. Under Wine, a path that begins with "/" is a Unix
/// path. `stored_papers` are the printer's custom papers.
std::variant<Options, Answer> ParseCommandLine(const std::vector<std::string>& arguments,
                                               const std::vector<NamedSheet>& stored_papers = {});

}  // namespace quillo::host
