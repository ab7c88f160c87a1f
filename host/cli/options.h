#pragma once

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

#include "host/client/client_fault.h"
#include "host/emf/player.h"
#include "host/printer/printer_values.h"
#include "host/printer/sheet.h"

namespace quillo::host {

/// What the command line asks for.
struct Options {
  struct Input {
    std::string name;  // as it was given
    std::filesystem::path path;
    Sheet sheet;
  };

  std::vector<Input> inputs;  // none only where something else is asked for
  std::filesystem::path output;
  int dpi = 600;
  bool fit = true;        // else pictures keep their size
  std::wstring document;  // never empty
  int preview_dpi = 96;   // 0: no previews
  bool quiet = false;
  bool strict = false;  // a page that lacks something changes the exit code
  bool list_papers = false;
  std::vector<PrinterValue> printer_values;  // to be stored
  std::vector<NamedSheet> custom_papers;     // to be stored
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
/// `stored_papers` are the printer's custom papers.
std::variant<Options, Answer> ParseCommandLine(const std::vector<std::string>& arguments,
                                               const std::vector<NamedSheet>& stored_papers = {});

}  // namespace quillo::host
