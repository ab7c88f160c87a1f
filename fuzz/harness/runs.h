#pragma once

#include <functional>
#include <string>

namespace quillo::harness {

/// Makes numbered runs of a program and prints what they find. The rest of a program that crashes
/// or hangs in one of them is made by another process.
///
///   PROGRAM [--share=N] [--from=RUN] [--to=RUN] [--only=RUN]
///
/// Every Nth run, from a run on, those below a run, or just one.
class Runs {
 public:
  Runs(int count, char** arguments);

  /// Makes the runs below `count`; `describe` says what the current one is. Returns the exit code:
  /// 0 when nothing was found, in other processes neither. To be called once.
  int Make(unsigned count, const std::function<void(unsigned number)>& run,
           std::function<std::string()> describe);

  /// A finding of the current run.
  void Report(const std::string& what);
};

}  // namespace quillo::harness
