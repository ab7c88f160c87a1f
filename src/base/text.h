#pragma once

#include <cstddef>

// Strings in fixed buffers. CopyPadded is the way to copy into one.
namespace quillo {

/// The part of a path after its last backslash; the whole path when there is none.
template <typename Char>
constexpr const Char* FileNamePart(const Char* path) {
  const Char* name = path;
  for (; *path != Char{}; ++path) {
    if (*path == Char{'\\'}) name = path + 1;
  }
  return name;
}

/// Copies up to `count` - 1 characters, or to the terminator, and fills the rest of `count` with
/// zeros.
template <typename Char>
constexpr void CopyPadded(Char* to, const Char* from, size_t count) {
  size_t i = 0;
  for (; i + 1 < count && from[i] != Char{}; ++i) to[i] = from[i];
  for (; i < count; ++i) to[i] = Char{};
}

/// Copies up to `count` characters, or to the terminator and including it, then makes the last of
/// `count` a terminator. Returns `to`. For other modules of the product that share these sources.
constexpr wchar_t* CopyBounded(wchar_t* to, const wchar_t* from, size_t count) {
  if (count == 0) return to;
  for (size_t i = 0; i < count; ++i) {
    to[i] = from[i];
    if (from[i] == L'\0') break;
  }
  to[count - 1] = L'\0';
  return to;
}

}  // namespace quillo
