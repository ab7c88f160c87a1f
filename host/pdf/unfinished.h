#pragma once

#include <filesystem>

namespace quillo::host::pdf {

/// Where a PDF file is until it is whole.
inline std::filesystem::path Unfinished(const std::filesystem::path& path) {
  std::filesystem::path unfinished = path;
  return unfinished += L".part";
}

}  // namespace quillo::host::pdf
