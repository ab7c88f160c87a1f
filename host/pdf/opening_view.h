#pragma once

#include <string>
#include <string_view>

namespace quillo::host::pdf {

/// What is to be appended to a PDF file (an update of its catalog) so that it opens at the width of
/// its first page, with its title in the window. `top`: height of that page in points. Reads files
/// with a cross-reference table; empty for others.
std::string OpenAtPageWidth(std::string_view file, double top);

}  // namespace quillo::host::pdf
