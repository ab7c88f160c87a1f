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

}  // namespace quillo::host
