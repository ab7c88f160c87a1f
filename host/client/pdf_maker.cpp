#include "host/client/pdf_maker.h"

#include <exception>
#include <utility>

#include "host/base/com_apartment.h"
#include "host/base/processor.h"
#include "host/base/text.h"
#include "host/pdf/pdf_document.h"

namespace quillo::host {

PdfMaker::PdfMaker(std::filesystem::path path, std::function<void(int)> page_done)
    : path_(std::move(path)), page_done_(std::move(page_done)), thread_([this] { Run(); }) {}

PdfMaker::~PdfMaker() {
  if (thread_.joinable()) Finish();
}

void PdfMaker::Hear(const nlohmann::ordered_json& call, const std::filesystem::path& folder) {
  const std::string& method = call["method"].get_ref<const std::string&>();
  if (method == "NotifyJobStart") SetTitle(call["document"]);
  if (!call.contains("file")) return;
  const auto file = folder / ToWide(call["file"].get_ref<const std::string&>());
  if (method == "NotifyEmbeddedFont") AddFont(file);
  if (method == "NotifyPage") {
    AddPage(file, call["page_object"]["width"], call["page_object"]["height"]);
  }
}

void PdfMaker::SetTitle(const std::string& title) { queue_.Add({Work::Kind::kTitle, {}, title}); }

void PdfMaker::AddFont(const std::filesystem::path& file) {
  queue_.Add({Work::Kind::kFont, file, {}});
}

void PdfMaker::AddPage(const std::filesystem::path& metafile, double width, double height) {
  queue_.Add({Work::Kind::kPage, metafile, {}, width, height});
}

nlohmann::ordered_json PdfMaker::Finish() {
  queue_.Add({Work::Kind::kEnd, {}, {}});
  thread_.join();
  return std::move(result_);
}

void PdfMaker::Run() {
  LeaveServersProcessor();
  try {
    const ComApartment apartment;  // for coded pictures
    pdf::PdfDocument document(path_);
    for (;;) {
      const Work work = queue_.Take();
      switch (work.kind) {
        case Work::Kind::kTitle:
          document.SetTitle(work.title);
          break;
        case Work::Kind::kFont:
          AddFontResourceExW(work.file.c_str(), FR_PRIVATE, nullptr);
          break;
        case Work::Kind::kPage:
          document.AddPage(work.file, work.width, work.height);
          page_done_(document.Pages());
          break;
        case Work::Kind::kEnd:
          document.Finish();
          result_ = {{"pages", document.Pages()},
                     {"approximated", document.Approximated()},
                     {"faults", document.Faults()}};
          return;
      }
    }
  } catch (const std::exception& failure) {
    result_ = {{"error", failure.what()}};
  }
}

}  // namespace quillo::host
