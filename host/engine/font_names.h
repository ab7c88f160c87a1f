#pragma once

#include "base/windows.h"

#include <string>
#include <vector>

namespace quillo::host {

/// Names that the font file behind the font of `dc` gives itself. The platform may go by another
/// name where it lets one font stand in for another.
struct FileNames {
  std::wstring family;              // in English where the font has that; may be empty
  std::vector<std::wstring> every;  // family and full names, in each of their languages
};

FileNames ReadFileNames(HDC dc);

}  // namespace quillo::host
