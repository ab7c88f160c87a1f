#pragma once

#include "base/windows.h"

#include <filesystem>
#include <string>

namespace quillo::host {

/// Renders the sheet of a page that the driver made, at `dpi`, on white, and writes it as a PNG
/// file. Throws std::runtime_error.
void WritePreview(const std::filesystem::path& page, const std::filesystem::path& png, int dpi);

}  // namespace quillo::host
