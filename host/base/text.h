#pragma once

#include <string>
#include <string_view>

namespace quillo::host {

/// UTF-16 to UTF-8; a lone surrogate becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);
/// UTF-8 to UTF-16; bytes that are not UTF-8 become U+FFFD.
std::wstring ToWide(std::string_view text);

/// A character of a page as people type it: a blank for a no-break space, a hyphen for a soft one
/// (many fonts show both of a pair by one glyph, and a glyph's last character is on the page), and
/// U+FFFD for NUL.
wchar_t AsSearched(wchar_t unit);

/// A number of tenths as a decimal number: 2159 is "215.9", 2100 is "210".
std::string FormatTenths(int tenths);

}  // namespace quillo::host
