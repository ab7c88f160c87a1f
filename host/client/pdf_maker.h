#pragma once

#include "base/windows.h"

#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <thread>

#include "host/base/work_queue.h"

namespace quillo::host {

/// Makes a PDF file of the pages that a client takes, on a thread of its own: the driver does not
/// wait for it.
class PdfMaker {
 public:
  /// `page_done` is called on that thread with the number of each page that the file has.
  PdfMaker(std::filesystem::path path, std::function<void(int)> page_done);
  /// Gives up a file that is not finished.
  ~PdfMaker();
  PdfMaker(const PdfMaker&) = delete;
  PdfMaker& operator=(const PdfMaker&) = delete;

  /// Passes on what a call to the client means for the file; `folder` has what was copied.
  void Hear(const nlohmann::ordered_json& call, const std::filesystem::path& folder);
  /// UTF-8. To be called before the first page.
  void SetTitle(const std::string& title);
  /// A font for the pages that follow, known to this process alone.
  void AddFont(const std::filesystem::path& file);
  /// A page's metafile. The sheet's sides are in 0.1 mm.
  void AddPage(const std::filesystem::path& metafile, double width, double height);
  /// Waits for the file. The result has "pages", "approximated" (counts by operation) and "faults"
  /// (what pages lack; phrases), or "error" (a sentence) when there is no file.
  nlohmann::ordered_json Finish();

 private:
  struct Work {
    enum class Kind { kTitle, kFont, kPage, kEnd };
    Kind kind;
    std::filesystem::path file;
    std::string title;
    double width = 0, height = 0;
  };

  void Run();

  const std::filesystem::path path_;
  const std::function<void(int)> page_done_;
  WorkQueue<Work> queue_{0};  // the driver does not wait, and a page is only its name here
  nlohmann::ordered_json result_;
  std::thread thread_;
};

}  // namespace quillo::host
