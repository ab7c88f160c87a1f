#pragma once

#include <cstddef>
#include <filesystem>

#include "base/bytes.h"

namespace quillo::host {

/// Rows from the top, three bytes a pixel: blue, green, red.
struct Picture {
  int width;  // pixels
  int height;
  size_t stride;  // bytes from row to row
  MutableBytes rows;
};

/// Writes a picture as a PNG file. Needs COM on this thread. Throws ResultFailure; then no file
/// is left.
void WritePng(const std::filesystem::path& path, const Picture& picture, int dpi);

}  // namespace quillo::host
