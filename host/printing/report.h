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

/// Something that a page lacks, or has a substitute for.
struct Loss {
  enum class Kind {
    kMissing,      // the page lacks it
    kSubstituted,  // the page has something else instead
  };
  Kind kind;
  std::string what;  // a phrase: "2 glyphs of \"Arial\" have no characters on the page"
};

/// All losses of a page: records without a place on it, calls that the driver refused, limits of
/// this program, characters, DrawResult::faults (possibly many), and fonts.
std::vector<Loss> LossesOf(const PageReport& page);

/// The contents of job.json.
struct JobReport {
  std::string printer;
  std::string document;
  DWORD job_id = 0;
  Copies copies;  // asked for; each page is there once
  std::vector<PageReport> pages;
  ClientReport client;
  std::string pdf;  // the PDF file, relative to the result folder when it is there; empty: none
};

nlohmann::ordered_json ToJson(const JobReport& report);

}  // namespace quillo::host
