#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillo::host {

/// Whether the two units at `at` of a text are one character above U+FFFF.
bool IsPair(std::wstring_view text, size_t at);

/// The character at `at`: that of the surrogate pair, or the unit itself.
char32_t CharacterAt(std::wstring_view text, size_t at);

/// Replaces each lone surrogate by U+FFFD; returns whether there was one.
bool ReplaceLoneSurrogates(std::wstring& text);

/// Whether Unicode keeps the number free of characters; many programs refuse text that holds it.
bool IsNoncharacter(char32_t character);

/// Appends a character as one unit or two.
void AppendCharacter(std::wstring& text, char32_t character);

/// Whether a unit is a control character (also of the bidirectional algorithm), a joiner or a
/// variation selector.
bool ShowsNothing(wchar_t unit);

/// Whether a unit is a mark that combines with the character before it.
bool IsMark(wchar_t unit);

/// The end of the character at `at` and of the marks that combine with it.
size_t ClusterEnd(std::wstring_view text, size_t at);

/// The text with a single character for each base and its marks, where Unicode has one.
std::wstring Compose(std::wstring_view text);

}  // namespace quillo::host
