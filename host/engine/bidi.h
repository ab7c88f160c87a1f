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

struct LineOrder {
  /// The index of the UTF-16 unit at each place, from the left; empty when the order is that of the
  /// text. The units of a surrogate pair stay in order.
  std::vector<size_t> units;
  /// Whether each unit of the text runs from right to left; empty: none does.
  std::vector<bool> leftwards;
};

/// The order of a line by the bidirectional algorithm of Uniscribe. `right_to_left` is the reading
/// order of the whole line.
LineOrder OrderLine(const std::wstring& text, bool right_to_left);

/// The bracket that a bracket shows as in text from right to left; other characters are returned
/// unchanged.
wchar_t Mirrored(wchar_t unit);

}  // namespace quillo::host
