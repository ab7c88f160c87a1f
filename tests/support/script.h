#pragma once

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace quillo::test {

/// A line of a script.
struct ScriptLine {
  std::string place;  // "jobs.txt:12"
  int number = 0;
  std::string text;
  bool begins_case = false;  // stands first, or after an empty line
  std::string expected;      // of it: see ReadScriptLines
};

/// The lines of tests/corpus/`name` but for empty ones and those that begin with #. What is
/// expected of a line stands after " > ", or in the lines that follow it and begin with ">";
/// several are joined by " | ".
inline std::vector<ScriptLine> ReadScriptLines(const std::string& name) {
  std::ifstream file(QUILLO_SOURCE_DIR "/tests/corpus/" + name);
  std::vector<ScriptLine> lines;
  bool begins_case = true;
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    if (line.empty()) begins_case = true;
    if (line.empty() || line[0] == '#') continue;
    if (line[0] == '>' && !begins_case) {
      std::string& expected = lines.back().expected;
      expected += (expected.empty() ? "" : " | ") + line.substr(2);
      continue;
    }
    const size_t end = std::min(line.find(" > "), line.size());
    const std::string expected = end == line.size() ? "" : line.substr(end + 3);
    lines.push_back({name + ":" + std::to_string(number), number, line.substr(0, end),
                     std::exchange(begins_case, false), expected});
  }
  EXPECT_FALSE(lines.empty()) << name;
  return lines;
}

}  // namespace quillo::test
