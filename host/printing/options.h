#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/client/client_fault.h"
#include "host/engine/font_use.h"
#include "host/printer/printer_values.h"
#include "host/printer/sheet.h"

namespace quillo::host {

/// A program to print from.
struct AppOptions {
  std::wstring program;
  std::vector<std::wstring> arguments;
  bool confirm = false;              // press OK in its dialogs
  std::optional<int> timeout;        // seconds; nothing: by whether there is a display
  std::optional<SheetChoice> sheet;  // in the place of the printer's default one
};

/// What the print command is asked for.
struct Options {
  struct Input {
    std::string name;  // as the command line has it
    std::filesystem::path path;
    SheetChoice sheet;
  };

  std::vector<Input> inputs;  // empty only where the command does something else
  std::optional<AppOptions> app;
  std::filesystem::path output;
  int dpi = 600;
  bool fit = true;        // else pictures keep their size
  std::wstring document;  // empty only where a program names its own
  bool make_pdf = true;
  std::filesystem::path pdf;  // empty: DIR/<document>.pdf
  int preview_dpi = 96;       // 0: no previews
  bool quiet = false;
  bool strict = false;  // a page that lacks something changes the exit code
  bool list_papers = false;
  std::vector<PrinterValue> printer_values;  // to be stored
  std::vector<NamedSheet> custom_papers;     // to be stored
  GlyphOrder glyph_order = GlyphOrder::kAsSubstitute;
  ClientFault client = ClientFault::kNone;
};

}  // namespace quillo::host
