#include "host/preview/preview_maker.h"

#include <exception>
#include <utility>

#include "host/base/processor.h"
#include "host/preview/preview.h"

namespace quillo::host {

PreviewMaker::PreviewMaker(int dpi) : dpi_(dpi), thread_([this] { Run(); }) {}

PreviewMaker::~PreviewMaker() {
  if (thread_.joinable()) Finish();
}

void PreviewMaker::Add(int number, std::filesystem::path page, std::filesystem::path png) {
  queue_.Add(Work{number, std::move(page), std::move(png)});
}

std::map<int, std::string> PreviewMaker::Finish() {
  queue_.Add(std::nullopt);
  thread_.join();
  return std::move(failures_);
}

void PreviewMaker::Run() {
  LeaveServersProcessor();
  while (const std::optional<Work> work = queue_.Take()) {
    try {
      WritePreview(work->page, work->png, dpi_);
    } catch (const std::exception& failure) {
      failures_[work->number] = failure.what();
    }
  }
}

}  // namespace quillo::host
