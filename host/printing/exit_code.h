#pragma once

namespace quillo::host {

/// What the command answers to its caller.
enum ExitCode : int {
  kPrinted = 0,
  kWrongUsage = 2,
  kInputRefused = 3,  // an input cannot be read, or is of no kind that is printed; with --strict
                      // also: a page is not all that its input asks for
  kDriverFailed = 4,
  kResultsLost = 5,
};

}  // namespace quillo::host
