#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace quillo::host::pdf {

/// Bytes of a file from an offset on; fewer at its end.
using ReadAt = std::function<std::string(size_t offset, size_t length)>;

/// What is to be appended to a PDF file of `size` bytes (an update of its catalog) so that it opens
/// at the width of its first page, with its title in the window. `top`: height of that page in
/// points. Reads files with a cross-reference table; empty for others.
std::string OpenAtPageWidth(const ReadAt& read, size_t size, double top);

}  // namespace quillo::host::pdf
