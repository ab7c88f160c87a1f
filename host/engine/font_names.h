#pragma once

#include "base/windows.h"

#include <string>
#include <vector>

namespace quillo::host {

/// The names in the file of the font that is selected in `dc`. The platform may use another name
/// where it substitutes one font for another.
struct FileNames {
  std::wstring family;              // in English if the font has that; may be empty
  std::vector<std::wstring> every;  // family and full names, in each of their languages
};

FileNames ReadFileNames(HDC dc);

}  // namespace quillo::host
