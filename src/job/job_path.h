#pragma once

#include "base/windows.h"

#include <strsafe.h>

namespace quillo {

/// The path of a job's file; empty until it is formatted.
class JobPath {
 public:
  /// False, with an empty path, when the text does not fit.
  template <typename... Arguments>
  bool Format(const wchar_t* format, Arguments... arguments) {
    if (SUCCEEDED(StringCchPrintfW(text_, MAX_PATH, format, arguments...))) return true;
    text_[0] = L'\0';
    return false;
  }

  [[nodiscard]] const wchar_t* Text() const { return text_; }

 private:
  wchar_t text_[MAX_PATH] = {};
};

}  // namespace quillo
