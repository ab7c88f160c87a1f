#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace quillo::imaging {

/// A line of a table: its fields by column.
struct TableRow {
  std::vector<std::string> fields;
  /// Decimal, or hexadecimal after 0x; 0 for a field that is no number.
  [[nodiscard]] int64_t Number(size_t column) const {
    return std::strtoll(fields.at(column).c_str(), nullptr, 0);
  }
  [[nodiscard]] uint32_t Unsigned(size_t column) const {
    return static_cast<uint32_t>(Number(column));
  }
};

/// The lines of tests/corpus/imaging/`name`, whose fields are separated by blanks; a line that
/// begins with '#' is a comment.
inline std::vector<TableRow> ReadTable(const char* name) {
  std::ifstream file(std::filesystem::path(QUILLO_SOURCE_DIR) / "tests/corpus/imaging" / name);
  std::vector<TableRow> rows;
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    TableRow row;
    for (std::string word; words >> word;) row.fields.push_back(word);
    if (!row.fields.empty() && row.fields[0][0] != '#') rows.push_back(row);
  }
  return rows;
}

/// The bytes of a field of hexadecimal digits.
inline std::vector<std::byte> HexBytes(const std::string& digits) {
  std::vector<std::byte> bytes;
  for (size_t i = 0; i + 1 < digits.size(); i += 2) {
    bytes.push_back(static_cast<std::byte>(std::stoi(digits.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

/// FNV-1a, 32 bits.
inline uint32_t Digest(std::span<const std::byte> bytes) {
  uint32_t digest = 2166136261u;
  for (const std::byte byte : bytes) digest = (digest ^ static_cast<uint32_t>(byte)) * 16777619u;
  return digest;
}

}  // namespace quillo::imaging
