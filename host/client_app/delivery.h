#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quillo::host {

/// Moves a finished file into `folder` under the document's name, with its own extension. A file
/// that is there already stays: the next free one of "name (2)", "name (3)" ... is taken. Returns
/// the path; throws ResultFailure.
std::filesystem::path Deliver(const std::filesystem::path& file,
                              const std::filesystem::path& folder, std::wstring_view document);

}  // namespace quillo::host
