#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <thread>

#include "host/base/work_queue.h"

namespace quillo::host {

/// Renders previews on a thread of its own, while the next page prints.
class PreviewMaker {
 public:
  explicit PreviewMaker(int dpi);
  /// Waits for all.
  ~PreviewMaker();
  PreviewMaker(const PreviewMaker&) = delete;
  PreviewMaker& operator=(const PreviewMaker&) = delete;

  /// Makes the PNG file `png` of a page's metafile. Waits while several others are not begun.
  void Add(int number, std::filesystem::path page, std::filesystem::path png);
  /// Waits for all. The previews that failed: number of the page, and a sentence.
  std::map<int, std::string> Finish();

 private:
  struct Work {
    int number;
    std::filesystem::path page, png;
  };
  /// Pages that wait are only names here; but the command waits for the last of them.
  static constexpr size_t kMaxWaiting = 16;

  void Run();

  const int dpi_;
  WorkQueue<std::optional<Work>> queue_{kMaxWaiting};  // none: the end
  std::map<int, std::string> failures_;
  std::thread thread_;
};

}  // namespace quillo::host
