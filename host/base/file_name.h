#pragma once

#include <string>
#include <string_view>

namespace quillo::host {

/// A file name, without extension, for a document that an application has named: one that every
/// folder takes, that shows as it reads, and that names no device. "Document" when nothing is left.
std::wstring FileNameFor(std::wstring_view document);

}  // namespace quillo::host
