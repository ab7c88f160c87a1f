#pragma once

#include "base/windows.h"

#include <string>
#include <string_view>

namespace quillo::host {

/// Standard output and error: UTF-16 on a terminal, else UTF-8.
class Console {
 public:
  /// `quiet`: only problems are shown, each after the name of the program.
  explicit Console(bool quiet = false, const char* program = "quillo-print");

  /// Writes `text` unchanged to `stream`: STD_OUTPUT_HANDLE or STD_ERROR_HANDLE.
  void Write(std::string_view text, DWORD stream = STD_OUTPUT_HANDLE);
  /// A line on standard error: what went wrong and what to do.
  void Problem(const std::string& sentence);

  /// Shows on a terminal that a page is being printed, until PageDone replaces the line.
  void PageBegins(const std::string& line);
  void PageDone(const std::string& line);

 private:
  void EraseProgress();

  const char* program_;
  bool quiet_;
  bool terminal_;  // whether standard output is one
  bool progress_shown_ = false;
};

}  // namespace quillo::host
