#pragma once

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace quillo::test {

/// A row of a table of cases. "\xNN" in its fields has become that byte; "\n", "\r", "\t" and "\f"
/// are known, too.
struct CaseRow {
  std::string place;  // "printer.txt:12"
  std::vector<std::string> fields;
};

inline std::string Unescaped(std::string_view field) {
  constexpr std::string_view kLetters = "nrtf", kControls = "\n\r\t\f";
  std::string text;
  for (size_t i = 0; i < field.size(); ++i) {
    if (field[i] != '\\') {
      text += field[i];
    } else if (field[++i] == 'x') {
      text += static_cast<char>(std::stoi(std::string(field.substr(i + 1, 2)), nullptr, 16));
      i += 2;
    } else {
      text += kControls[kLetters.find(field[i])];
    }
  }
  return text;
}

/// Reads tests/corpus/`table`: a row a line, " | " between fields. Empty lines and those that begin
/// with # are left out.
inline std::vector<CaseRow> ReadCases(const std::string& table) {
  std::ifstream file(std::string(QUILLO_SOURCE_DIR "/tests/corpus/") + table);
  std::vector<CaseRow> rows;
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    if (line.empty() || line[0] == '#') continue;
    CaseRow& row = rows.emplace_back();
    row.place = table + ":" + std::to_string(number);
    std::string_view rest = line;
    for (size_t end; (end = rest.find(" |")) != std::string_view::npos;) {
      row.fields.push_back(Unescaped(rest.substr(0, end)));
      rest.remove_prefix(std::min(end + 3, rest.size()));
    }
    row.fields.push_back(Unescaped(rest));
  }
  EXPECT_FALSE(rows.empty()) << table;
  return rows;
}

/// The words of a text, with numbers as C++ writes them.
template <typename... T>
void Scan(const std::string& text, T&... values) {
  std::istringstream words(text);
  words.unsetf(std::ios::basefield);
  (words >> ... >> values);
}

/// Expects each row's last field to be what `outcome` makes of the row's fields.
template <typename Outcome>
void CheckCases(const std::string& table, Outcome outcome) {
  for (const CaseRow& row : ReadCases(table)) {
    EXPECT_EQ(outcome(row.fields), row.fields.back()) << row.place;
  }
}

}  // namespace quillo::test
