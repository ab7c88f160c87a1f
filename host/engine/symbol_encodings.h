#pragma once

namespace quillo::host {

/// The Unicode character of a code of the fonts Symbol and Wingdings: 0x20 to 0xFF, or 0xF020 to
/// 0xF0FF. 0 for other faces and for codes without one.
char32_t UnicodeOfSymbol(const wchar_t* face, wchar_t code);

}  // namespace quillo::host
