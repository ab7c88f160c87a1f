#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "base/bytes.h"

// Real files of other applications. They lie beside the checkout (../shared/corpus) and are not
// part of it; tests over them skip with one line when they are absent.
namespace quillo::test {

/// All files below a folder of the corpus, sorted; empty when the corpus is absent.
inline std::vector<std::filesystem::path> CorpusFiles(const char* folder) {
  std::vector<std::filesystem::path> files;
  std::error_code absent;
  const auto root = std::filesystem::path(QUILLO_SOURCE_DIR) / "../shared/corpus" / folder;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root, absent)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::ranges::sort(files);
  return files;
}

inline std::vector<std::byte> ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> chars{std::istreambuf_iterator<char>(file), {}};
  std::vector<std::byte> bytes(chars.size());
  std::ranges::transform(chars, bytes.begin(), [](char c) { return static_cast<std::byte>(c); });
  return bytes;
}

inline void WriteWhole(const std::filesystem::path& path, Bytes content) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(content.data()),
             static_cast<std::streamsize>(content.size()));
}

}  // namespace quillo::test
