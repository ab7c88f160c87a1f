#pragma once

namespace quillo::host {

/// Exit codes of the command.
enum ExitCode : int {
  kPrinted = 0,
  kWrongUsage = 2,
  kInputRefused = 3,  // an input cannot be read or printed; with --strict also: a page lacks
                      // something or has a substitute for it
  kDriverFailed = 4,
  kResultsLost = 5,
};

/// The one that weighs more: a later, lesser problem does not change a result.
inline ExitCode Worse(ExitCode a, ExitCode b) {
  const auto weight = [](ExitCode code) {
    return code == kDriverFailed ? 3 : code == kResultsLost ? 2 : code == kInputRefused ? 1 : 0;
  };
  return weight(b) > weight(a) ? b : a;
}

}  // namespace quillo::host
