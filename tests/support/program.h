#pragma once

#include <filesystem>
#include <string>

namespace quillo::test {

/// What a run of a program left.
struct ProgramResult {
  int exit_code = -1;
  std::string output;
  std::string errors;
};

/// Runs a program with these arguments, quoted as a command line has them. What it writes goes to
/// two files of `folder` on its way.
ProgramResult RunProgram(const std::wstring& program, const std::wstring& arguments,
                         const std::filesystem::path& folder);

/// The bytes of a file; none when it cannot be read.
std::string ReadText(const std::filesystem::path& path);

}  // namespace quillo::test
