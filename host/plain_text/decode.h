#pragma once

#include <optional>
#include <string>

#include "base/bytes.h"

namespace quillo::host {

/// The place of the first byte because of which a file that begins with `head` is no plain text: a
/// control character that text does not have. Nothing for text, or behind a byte-order mark.
std::optional<size_t> FindNoText(Bytes head);

/// Whether a file that begins with `head` may be plain text.
inline bool LooksLikeText(Bytes head) { return !FindNoText(head); }

/// Decodes a text file: UTF-8 or UTF-16 by its byte-order mark, else UTF-8 when it is that, else
/// the ANSI code page.
std::wstring DecodeText(Bytes file);

}  // namespace quillo::host
