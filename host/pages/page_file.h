#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace quillo::host {

/// What a page that the driver made holds.
struct PageContent {
  std::map<std::string, uint64_t> records;  // by type
  std::vector<std::string> text;            // of each text call, in the order of drawing
  uint64_t characters = 0;                  // of all runs, in UTF-16 units
  /// By face name: glyph indexes without a character. The page holds U+0640 for those that
  /// no character of the font shows, NUL (in `text` U+FFFD) for those of a font without a map.
  std::map<std::string, uint64_t> lost_characters;
};

/// Reads a page that the driver made. `glyph_texts`: of each of its text calls, whether the text
/// came as glyph indexes. Throws ResultFailure.
PageContent ReadPageFile(const std::filesystem::path& path, const std::vector<bool>& glyph_texts);

}  // namespace quillo::host
