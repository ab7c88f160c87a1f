// Prints jobs through the shipped driver while one of the system calls that it makes fails, in each
// run another one (fuzz/harness/runs.h has the options).
#include "base/windows.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>

#include "faults/scenarios.h"
#include "fuzz/harness/guarded_heap.h"
#include "fuzz/harness/interposer.h"
#include "fuzz/harness/runs.h"
#include "support/holdings.h"
#include "support/line.h"
#include "support/recording_client.h"

namespace quillo::faults {
namespace {

using harness::Import;
using harness::interposer;

/// Without these the thread cannot work as the printing user, and files stay untouched.
constexpr std::string_view kForTheUser =
    " ImpersonateLoggedOnUser DuplicateTokenEx OpenProcessToken OpenThreadToken GetProcAddress"
    " LoadLibraryExW RevertToSelf ";

constexpr int kRepeats = 3;  // a leak is what each of them leaks

/// A call that fails.
struct Failure {
  const Scenario* scenario;
  const Import* import;
  uint32_t call;
  bool and_later;
};

/// What a run may not leave. Measured in place, as its own memory is part of the process's.
struct State {
  void Measure() {
    files.clear();
    for (const auto& file : std::filesystem::directory_iterator(test::TempFolder())) {
      files.insert(file.path());
    }
    blocks = harness::GuardedBlocks();
    holdings = test::Holdings::Now();
  }
  const char* LeakSince(const State& before, const Outcome& outcome) const {
    const test::Holdings& held = before.holdings;
    if (blocks > before.blocks) return "leaks a block of the driver";
    if (holdings.gdi_objects > held.gdi_objects) return "leaks a GDI object";
    if (outcome.leaves_handles) return "leaks a handle";
    if (files != before.files) return "leaves a file";
    // Without a connection, the client's reference went with the connection file.
    if (outcome.connected && HeapSince(before) > kept_by_com) return "leaks memory";
    return nullptr;
  }

  [[nodiscard]] ptrdiff_t HeapSince(const State& before) const {
    return static_cast<ptrdiff_t>(holdings.heap_bytes - before.holdings.heap_bytes);
  }

  static inline ptrdiff_t kept_by_com = 0;  // bytes of the heap after any job
  test::Holdings holdings = {};
  size_t blocks = 0;
  std::set<std::filesystem::path> files;
};

class Checker {
 public:
  explicit Checker(harness::Runs& runs) : runs_(runs) {
    for (const Scenario& scenario : kScenarios) {
      stage_.Print(scenario);  // what is made once and kept
      interposer.Arm();
      expected_.push_back(stage_.Print(scenario));
      AddFailures(scenario);
    }
    static State before, after;
    before.Measure();
    stage_.Print(kScenarios[0]);
    after.Measure();
    State::kept_by_com = after.HeapSince(before);
  }

  int CheckAll() {
    for (const Outcome& outcome : expected_) {
      if (outcome.problems.empty() && outcome.pages.size() == 2) continue;
      std::puts("a job in which nothing was made to fail went wrong");
      return 2;
    }
    const auto check = [this](unsigned number) { Check(failures_[current_ = number]); };
    const auto describe = [this] {
      const Failure& run = failures_[current_];
      return test::Line(run.scenario->name, ": call ", run.call,
                        run.and_later ? " and later of " : " of ", run.import->name, ", while ",
                        interposer.phase_of_failure);
    };
    return runs_.Make(static_cast<unsigned>(failures_.size()), check, describe);
  }

 private:
  /// Every function's calls in the job just printed, at most `points` of them spread evenly.
  void AddFailures(const Scenario& scenario) {
    for (const Import& import : interposer.imports) {
      const uint32_t points = std::min(import.calls, scenario.points);
      for (uint32_t i = 0; i < points; ++i) {
        const uint32_t call = 1 + i * import.calls / points;
        for (const bool and_later : {false, true}) {
          failures_.push_back({&scenario, &import, call, and_later});
        }
      }
    }
  }

  void Check(const Failure& run) {
    static State before, after;
    const char* leak = nullptr;
    for (int i = 0; i == 0 || (leak != nullptr && i < kRepeats); ++i) {
      before.Measure();
      interposer.Arm(run.import, run.call, run.and_later);
      Outcome outcome = stage_.Print(*run.scenario);
      if (i == 0) Judge(run, outcome);
      outcome.problems = {};  // whose memory would count
      outcome.pages = {};
      after.Measure();
      if (kForTheUser.find(" " + run.import->name + " ") != std::string_view::npos) {
        before.files = after.files;
      }
      leak = after.LeakSince(before, outcome);
    }
    if (leak != nullptr) runs_.Report(leak);
  }

  void Judge(const Failure& run, const Outcome& outcome) {
    for (const std::string& problem : outcome.problems) runs_.Report(problem);
    if (interposer.Failures() == 0) runs_.Report("the call was not made");
    // What fails while a page is drawn costs part of that page, and nothing of the next one.
    const Outcome& expected = expected_[static_cast<size_t>(run.scenario - kScenarios.data())];
    const bool drawing = std::strcmp(interposer.phase_of_failure, "drawing") == 0;
    if (drawing && !run.and_later &&
        (outcome.pages.size() != 2 || outcome.pages[1] != expected.pages[1])) {
      runs_.Report("the next page is not what it was");
    }
  }

  harness::Runs& runs_;
  Stage stage_;
  std::vector<Outcome> expected_;  // of each scenario without a failure
  std::vector<Failure> failures_;
  unsigned current_ = 0;
};

}  // namespace
}  // namespace quillo::faults

int main(int count, char** arguments) {  // NOLINT(bugprone-exception-escape)
  quillo::harness::Runs runs(count, arguments);
  return quillo::faults::Checker(runs).CheckAll();
}
