#pragma once

#include <algorithm>
#include <benchmark/benchmark.h>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "bench/result.h"

namespace quillo::bench {

/// A benchmark of this system's code and one of a library that people would take instead; every
/// argument of the first is an argument of the second.
struct Pair {
  const char* work;        // as the result names it
  std::string ours;        // names of benchmarks, without arguments
  std::string theirs;      //
  const char* competitor;  // as the result names it
  double at_least;         // times as fast as the competitor
};

/// Prints the usual table, and at the end the result of each pair, by the shortest processor time
/// of each side.
class PairReporter : public benchmark::ConsoleReporter {
 public:
  explicit PairReporter(std::span<const Pair> pairs) : pairs_(pairs) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration) continue;  // a mean and the like
      const double time =
          run.GetAdjustedCPUTime() * 1e6 / benchmark::GetTimeUnitMultiplier(run.time_unit);
      double& shortest = times_.emplace(run.benchmark_name(), time).first->second;
      shortest = std::min(shortest, time);
    }
    ConsoleReporter::ReportRuns(runs);
  }

  void Finalize() override {
    std::printf("\n");  // after the colours of the last line
    for (const Pair& pair : pairs_) {
      for (const auto& [name, ours] : times_) {
        if (!name.starts_with(pair.ours)) continue;
        const std::string arguments = name.substr(pair.ours.size());
        const auto theirs = times_.find(pair.theirs + arguments);
        if (theirs == times_.end()) continue;
        PrintResult((pair.work + arguments).c_str(), ours, pair.competitor, theirs->second,
                    theirs->second / ours, AtLeast(pair.at_least));
      }
    }
  }

 private:
  std::span<const Pair> pairs_;
  std::map<std::string, double> times_;  // microseconds
};

/// Runs every benchmark of the program several times, mixed, so that the machine's load hits both
/// sides of a pair.
inline void RunPairs(int argc, char** argv, std::span<const Pair> pairs) {
  std::string options[] = {"--benchmark_repetitions=7", "--benchmark_min_time=0.1",
                           "--benchmark_enable_random_interleaving=true"};
  std::vector<char*> arguments(argv, argv + argc);
  for (std::string& option : options) arguments.insert(arguments.begin() + 1, option.data());
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  PairReporter reporter(pairs);
  benchmark::RunSpecifiedBenchmarks(&reporter);
}

}  // namespace quillo::bench
