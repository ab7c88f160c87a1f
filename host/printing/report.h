#pragma once

#include "base/windows.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "config/papers/paper_units.h"
#include "host/client/client_process.h"
#include "host/engine/graphics.h"
#include "host/inputs/input.h"
#include "host/pages/page_file.h"

namespace quillo::host {

/// One page of the job, from its input to its files.
struct PageReport {
  std::string input;    // as the command line names it
  std::string file;     // in the result folder; empty when the page did not arrive there
  std::string preview;  // likewise
  Extent sheet{};       // 0.1 mm
  int dpi = 0;
  DrawResult drawn;
  DdiCalls calls;
  PageContent content;
};

/// Something that a page has not, or not as its input asks for it.
struct Loss {
  enum class Kind {
    kMissing,      // the page lacks it
    kSubstituted,  // the page has something else for it
  };
  Kind kind;
  std::string what;  // a phrase: "2 glyphs of \"Arial\" have no characters on the page"
};

/// Everything of this kind: records without a place on the page, calls that the driver refused,
/// limits of this program, characters, damage (which there may be much of) and fonts. Whatever an
/// input adds to DrawResult::faults is among it.
std::vector<Loss> LossesOf(const PageReport& page);

/// Everything that job.json says.
struct JobReport {
  std::string printer;
  std::string document;
  DWORD job_id = 0;
  std::vector<PageReport> pages;
  ClientReport client;
};

nlohmann::ordered_json ToJson(const JobReport& report);

}  // namespace quillo::host
