// Prints jobs through the shipped driver while one of the system calls that it makes fails, in each
// run another one:
//
//   faults [--share=N] [--from=RUN] [--only=RUN]
//
// Every Nth run, from a run on, or just one. Exit code 0 when nothing was found.
#include "base/windows.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <process.h>
#include <set>
#include <thread>

#include "faults/guarded_heap.h"
#include "faults/interposer.h"
#include "faults/scenarios.h"
#include "support/holdings.h"
#include "support/recording_client.h"

namespace quillo::faults {
namespace {

constexpr auto kLimit = std::chrono::seconds(30);  // of a run
constexpr int kRepeats = 3;                        // a leak is what each of them leaks

/// A call that fails.
struct Run {
  const Scenario* scenario;
  const Import* import;
  uint32_t call;
  bool and_later;
};

unsigned share = 1, from = 0, only = ~0u;
unsigned current = 0, made = 0, found = 0;
const Run* current_run = nullptr;
std::atomic<std::chrono::steady_clock::time_point> started;

void Report(const char* what) {
  ++found;
  std::printf("run %u (%s: call %u%s of %s, while %s): %s\n", current, current_run->scenario->name,
              current_run->call, current_run->and_later ? " and later" : "",
              current_run->import->name.c_str(), interposer.phase_of_failure, what);
  std::fflush(stdout);
}

/// This process is done for: another one makes the runs that are left.
[[noreturn]] void GoOnElsewhere() {
  int rest = 0;
  current_run = nullptr;
  if (only == ~0u) {
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    const std::wstring n = L"--share=" + std::to_wstring(share);
    const std::wstring next = L"--from=" + std::to_wstring(current + 1);
    rest =
        static_cast<int>(_wspawnl(_P_WAIT, program, L"faults", n.c_str(), next.c_str(), nullptr));
  }
  TerminateProcess(GetCurrentProcess(), rest + 1);
  std::abort();
}

LONG WINAPI Crashed(EXCEPTION_POINTERS* exception) {
  char what[64];
  std::snprintf(what, sizeof what, "exception 0x%lX at %p",
                exception->ExceptionRecord->ExceptionCode,
                exception->ExceptionRecord->ExceptionAddress);
  Report(what);
  GoOnElsewhere();
}

void Watch(HANDLE engine_thread) {
  for (;;) {
    std::this_thread::sleep_for(std::chrono::seconds(1));
    if (current_run == nullptr || std::chrono::steady_clock::now() - started.load() < kLimit) {
      continue;
    }
    Report("hangs");
    SuspendThread(engine_thread);
    GoOnElsewhere();
  }
}

/// What a run may not leave. Measured in place, as its own memory is part of the process's.
struct State {
  void Measure() {
    files.clear();
    for (const auto& file : std::filesystem::directory_iterator(test::TempFolder())) {
      files.insert(file.path().wstring());
    }
    blocks = GuardedBlocks();
    holdings = test::Holdings::Now();
  }
  /// `connected`: otherwise the client's reference went with the connection file.
  const char* LeakSince(const State& before, bool connected) const {
    if (blocks > before.blocks) return "leaks memory of the driver";
    if (holdings.gdi_objects > before.holdings.gdi_objects) return "leaks a GDI object";
    if (holdings.kernel_handles > before.holdings.kernel_handles) return "leaks a handle";
    if (connected && holdings.heap_bytes > before.holdings.heap_bytes)
      return "leaks memory of the process";
    if (files != before.files) return "leaves a file";
    return nullptr;
  }

  test::Holdings holdings = {};
  size_t blocks = 0;
  std::set<std::wstring> files;
};

Outcome Make(Stage& stage, const Run& run) {
  started = std::chrono::steady_clock::now();
  interposer.Arm(run.import, run.call, run.and_later);
  Outcome outcome = stage.Print(*run.scenario);
  if (interposer.Failures() == 0) outcome.problems.emplace_back("the call was not made");
  interposer.Arm();
  return outcome;
}

void Judge(const Run& run, const Outcome& outcome, const Outcome& expected) {
  for (const std::string& problem : outcome.problems) Report(problem.c_str());
  // What fails while a page is drawn costs part of that page, and nothing of the next one.
  const bool drawing = std::strcmp(interposer.phase_of_failure, "drawing") == 0;
  if (drawing && !run.and_later &&
      (outcome.pages.size() != 2 || outcome.pages[1] != expected.pages[1])) {
    Report("the next page is not what it was");
  }
}

void Check(Stage& stage, const Run& run, const Outcome& expected) {
  static State before, after;
  current_run = &run;
  const char* leak = nullptr;
  for (int i = 0; i == 0 || (leak != nullptr && i < kRepeats); ++i) {
    before.Measure();
    bool connected = false;
    {
      const Outcome outcome = Make(stage, run);
      connected = outcome.connected;
      if (i == 0) Judge(run, outcome, expected);
    }
    after.Measure();
    leak = after.LeakSince(before, connected);
  }
  if (leak != nullptr) Report(leak);
  ++made;
}

/// Every function's calls in a job without failures, at most `points` of them spread evenly.
void AddRuns(const Scenario& scenario, std::vector<Run>& runs) {
  for (const Import& import : interposer.imports) {
    const uint32_t points = std::min(import.calls, scenario.points);
    for (uint32_t i = 0; i < points; ++i) {
      const uint32_t call = 1 + static_cast<uint32_t>(uint64_t{i} * import.calls / points);
      for (const bool and_later : {false, true}) {
        runs.push_back({&scenario, &import, call, and_later});
      }
    }
  }
}

int Main(int count, char** arguments) {
  for (int i = 1; i < count; ++i) {
    std::sscanf(arguments[i], "--share=%u", &share);
    std::sscanf(arguments[i], "--from=%u", &from);
    std::sscanf(arguments[i], "--only=%u", &only);
  }
  Stage stage;
  std::vector<Run> runs;
  std::vector<Outcome> expected;
  for (const Scenario& scenario : kScenarios) {
    stage.Print(scenario);  // what is made once and kept
    interposer.Arm();
    expected.push_back(stage.Print(scenario));
    if (!expected.back().problems.empty() || expected.back().pages.size() != 2) {
      std::printf("%s fails by itself: %s\n", scenario.name,
                  expected.back().problems.empty() ? "pages are missing"
                                                   : expected.back().problems[0].c_str());
      return 1;
    }
    AddRuns(scenario, runs);
  }
  SetUnhandledExceptionFilter(Crashed);
  HANDLE engine_thread = nullptr;
  DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &engine_thread, 0,
                  FALSE, DUPLICATE_SAME_ACCESS);
  std::thread(Watch, engine_thread).detach();
  for (current = from; current < runs.size(); ++current) {
    if (only != ~0u ? current != only : current % share != 0) continue;
    const Run& run = runs[current];
    Check(stage, run, expected[static_cast<size_t>(run.scenario - kScenarios.data())]);
  }
  std::printf("%u of %zu runs made, %u findings\n", made, runs.size(), found);
  current_run = nullptr;
  return found == 0 ? 0 : 1;
}

}  // namespace
}  // namespace quillo::faults

int main(int count, char** arguments) { return quillo::faults::Main(count, arguments); }
