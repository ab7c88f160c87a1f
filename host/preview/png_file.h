#pragma once

#include <filesystem>

#include "host/engine/drawing.h"

namespace quillo::host {

/// Writes a picture of 1, 4, 8 or 24 bits a pixel, rows from the top, as a PNG file; one with a
/// palette has all the colours that its pixels name. Throws std::runtime_error; then no file is
/// left.
void WritePng(const std::filesystem::path& path, const BitmapSource& picture, int dpi);

}  // namespace quillo::host
