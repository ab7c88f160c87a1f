#pragma once

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

#include "host/client/client_fault.h"
#include "host/emf/player.h"
#include "host/printer/sheet.h"

namespace quillo::host {

/// What the command line asks for.
struct Options {
  struct Input {
    std::string name;  // as it was given
    std::filesystem::path path;
    Sheet sheet;
  };

  std::vector<Input> inputs;  // at least one
  std::filesystem::path output;
  int dpi = 600;
  bool fit = true;        // else pictures keep their size
  std::wstring document;  // never empty
  int preview_dpi = 96;   // 0: no previews
  bool quiet = false;
  emf::GlyphOrder glyph_order = emf::GlyphOrder::kAsSubstitute;
  ClientFault client = ClientFault::kNone;
};

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
std::variant<Options, Answer> ParseCommandLine(const std::vector<std::string>& arguments);

}  // namespace quillo::host
