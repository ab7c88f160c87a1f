#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quillo::host {

/// The index of the UTF-16 unit at each place of a line, from the left, by the bidirectional
/// algorithm of Uniscribe. `right_to_left` is the reading order of the whole line. Empty when every
/// unit stands at its own place.
std::vector<size_t> VisualOrder(const std::wstring& text, bool right_to_left);

}  // namespace quillo::host
