#pragma once

#include <cstdio>

namespace quillo::bench {

/// What was wanted of a ratio.
struct Wanted {
  enum class Side { kAtMost, kAtLeast } side;
  double limit;

  bool Holds(double ratio) const { return side == Side::kAtMost ? ratio <= limit : ratio >= limit; }
};

inline Wanted AtMost(double limit) { return {Wanted::Side::kAtMost, limit}; }
inline Wanted AtLeast(double limit) { return {Wanted::Side::kAtLeast, limit}; }

/// Prints a row of tools/bench's table: what was measured, the two times in microseconds, their
/// ratio, and what was wanted of it. Returns whether the ratio is as wanted.
inline bool PrintResult(const char* work, double ours, const char* competitor, double theirs,
                        double ratio, const Wanted& wanted) {
  std::printf("result\t%s\t%.4g us\t%s\t%.4g us\t%.2f\t%s\t%.2f\n", work, ours, competitor, theirs,
              ratio, wanted.side == Wanted::Side::kAtMost ? "<=" : ">=", wanted.limit);
  std::fflush(stdout);
  return wanted.Holds(ratio);
}

}  // namespace quillo::bench
