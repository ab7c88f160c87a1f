#pragma once

#include <sstream>
#include <string>

namespace quillo::test {

/// The parts as one text.
template <typename... Parts>
std::string Line(const Parts&... parts) {
  std::ostringstream line;
  (line << ... << parts);
  return line.str();
}

}  // namespace quillo::test
