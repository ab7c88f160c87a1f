#pragma once

#include <memory>
#include <string>
#include <vector>

namespace quillo::faults {

/// A job of two pages whose calls are made to fail, one in each run.
struct Scenario {
  const char* name;
  std::vector<const char*> scripts;  // of tests/corpus, drawn on both pages
  unsigned points;                   // at most so many calls of each function fail in turn
  bool short_of_memory = false;      // a large picture goes to a file
  bool custom_paper = false;         // of the second page, for which the device is reset
  bool other_process = false;        // where the client is
};
extern const std::vector<Scenario> kScenarios;

/// What came of a job.
struct Outcome {
  std::vector<std::string> problems;  // how the contract was broken
  std::vector<size_t> pages;          // the content of each page that the client got
  bool connected = false;             // the client heard of the job
  bool leaves_handles = false;        // kernel handles were open when the document was at its end
};

/// Printer, driver and all else that jobs share. The driver's imports are the interposer's.
class Stage {
 public:
  Stage();
  ~Stage();
  /// Prints the scenario's job, without what the driver refuses.
  Outcome Print(const Scenario& scenario);

 private:
  class Job;
  struct Things;
  std::unique_ptr<Things> things_;
};

}  // namespace quillo::faults
