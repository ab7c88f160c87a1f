#pragma once

#include "base/windows.h"

#include <memory>
#include <string>
#include <vector>

#include "host/printer/spool_job.h"

namespace quillo::faults {

/// A job whose calls are made to fail, one run each.
struct Scenario {
  const char* name;
  std::vector<const char*> scripts;  // of tests/corpus/emf, drawn on both pages
  bool pictures = false;             // of every depth, through every blit, are too
  bool short_of_memory = false;      // a large picture goes to a file
  bool fonts = false;          // one is embedded; and papers, settings, escapes, reset devices
  bool other_process = false;  // where the client is
  unsigned points;             // at most so many calls of each function fail in turn
};
extern const std::vector<Scenario> kScenarios;

/// What came of a job.
struct Outcome {
  std::vector<std::string> problems;  // the contract was broken
  std::vector<size_t> pages;          // a number for the content of each page that the client got
  bool connected = false;             // the client heard of the job
};

/// Everything that jobs share.
class Stage {
 public:
  Stage();
  ~Stage();
  /// Prints the scenario's two pages. Whatever the driver refuses is left out.
  Outcome Print(const Scenario& scenario);

 private:
  class Job;
  struct Things;
  std::unique_ptr<Things> things_;
};

}  // namespace quillo::faults
