#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

namespace quillo::test {

/// What a run of the print command left.
struct CommandResult {
  int exit_code = -1;
  std::string output;
  std::string errors;
};

/// Runs quillo-print.exe with these arguments, quoted as a command line has them.
CommandResult RunPrint(const std::wstring& arguments);

/// job.json of a result folder; null when there is none.
nlohmann::ordered_json ReadJobReport(const std::filesystem::path& folder);

}  // namespace quillo::test
