#pragma once

#include <string>
#include <string_view>

namespace quillo::host {

/// UTF-16 to UTF-8; a lone surrogate becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);
/// UTF-8 to UTF-16; bytes that are not UTF-8 become U+FFFD.
std::wstring ToWide(std::string_view text);

/// A number of tenths as a decimal number: 2159 is "215.9", 2100 is "210".
std::string FormatTenths(int tenths);

}  // namespace quillo::host
