#pragma once

#include <optional>
#include <string>

#include "base/bytes.h"

namespace quillo::host {

/// The offset of the first byte that keeps a file that begins with `head` from being plain text: a
/// control character that text does not have. Nothing for text and after a byte-order mark.
std::optional<size_t> FindNoText(Bytes head);

/// Whether a file that begins with `head` may be plain text.
inline bool LooksLikeText(Bytes head) { return !FindNoText(head); }

/// Decodes a text file: UTF-8 or UTF-16 by its byte-order mark, else UTF-8 when it is valid,
/// else the ANSI code page.
std::wstring DecodeText(Bytes file);

}  // namespace quillo::host
