#pragma once

#include <filesystem>
#include <string>

namespace quillo::host {

/// The log of the user's clients: a line an event, with time and process. Two files, of which the
/// older goes when the newer is full. A log that cannot be written is no failure.
class Log {
 public:
  explicit Log(std::filesystem::path file) : file_(std::move(file)) {}
  void Write(const std::string& line) const;

 private:
  std::filesystem::path file_;
};

}  // namespace quillo::host
