#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quillo::host {

/// Whether a unit is a letter of a script that runs from right to left.
bool IsLeftwardLetter(wchar_t unit);

/// Whether the first letter of a text runs from right to left.
bool BeginsLeftwards(std::wstring_view text);

/// The index of the UTF-16 unit at each place of a line, from the left, by the bidirectional
/// algorithm of Uniscribe. `right_to_left` is the reading order of the whole line. Empty when the
/// order is that of the text. The units of a surrogate pair stay in order.
std::vector<size_t> VisualOrder(const std::wstring& text, bool right_to_left);

}  // namespace quillo::host
