#pragma once

#include <string>

#include "base/bytes.h"

namespace quillo::host {

/// Whether a file that begins with `head` may be plain text: a byte-order mark, or no control
/// characters but those of text.
bool LooksLikeText(Bytes head);

/// Decodes a text file: UTF-8 or UTF-16 by its byte-order mark, else UTF-8 when it is that, else
/// the ANSI code page.
std::wstring DecodeText(Bytes file);

}  // namespace quillo::host
