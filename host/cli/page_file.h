#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace quillo::host {

/// What a page of the driver holds.
struct PageContent {
  std::map<std::string, uint64_t> records;  // by type
  std::vector<std::string> text;            // of each text call, in the order of drawing
  uint64_t characters = 0;                  // of all runs, in UTF-16 units
  /// By face name: glyphs for which the page has no character. They stand in `text` as U+FFFD.
  std::map<std::string, uint64_t> lost_characters;
};

/// Reads a page that the driver made. Throws ResultFailure.
PageContent ReadPageFile(const std::filesystem::path& path);

}  // namespace quillo::host
