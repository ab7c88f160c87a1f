#include "host/app/app_document.h"

#include <filesystem>
#include <vector>

#include "host/base/file_content.h"
#include "host/base/text.h"
#include "host/inputs/metafile_input.h"

namespace quillo::host {

namespace {

constexpr uint64_t kMaxPageBytes = 1 << 30;

/// Reads a page's file and removes it. Throws UnreadableInput.
std::vector<std::byte> TakeFile(const std::filesystem::path& path) {
  std::vector<std::byte> content;
  std::error_code error;
  const uint64_t size = std::filesystem::file_size(path, error);
  if (!error && size <= kMaxPageBytes) {
    content = ReadContent(path).value_or(std::vector<std::byte>());
  }
  std::filesystem::remove(path, error);
  if (size > kMaxPageBytes) throw UnreadableInput("drew a page of more than 1 GB");
  if (content.empty()) throw UnreadableInput("left a page that cannot be read");
  return content;
}

}  // namespace

AppDocument::AppDocument(AppProgram& program, const AppMode& mode)
    : program_(program), mode_(mode) {}

AppDocument::~AppDocument() { Answer(0); }

void AppDocument::JobStarted(DWORD job_id, const PrintSession& session) {
  session_ = &session;
  const std::wstring file = program_.page_file_.wstring();
  Answer(static_cast<int32_t>(job_id), std::as_bytes(std::span(file)));
}

bool AppDocument::PreparePage() {
  Answer(1);
  const std::string taken =
      pages_ == 0 ? "before its first page"
                  : "after page " + std::to_string(pages_) + "; the pages so far are printed";
  for (;;) {
    switch (program_.Next(program_.Deadline(program_.silence_))) {
      case AppProgram::Outcome::kEnded:
      case AppProgram::Outcome::kGone:
        throw UnreadableInput(program_.HowItWent() + " inside the document, " + taken);
      case AppProgram::Outcome::kSilent:
        program_.given_up_ = true;
        throw UnreadableInput("was silent for " + std::to_string(program_.silence_ / 1000) +
                              " s inside the document, " + taken + program_.HiddenDialog());
      case AppProgram::Outcome::kRefused:
        program_.given_up_ = true;
        throw UnreadableInput("sent what its recorder does not send, " + taken);
      case AppProgram::Outcome::kRequest:
        break;
    }
    waits_ = true;
    const app::Request& request = program_.pipe_.Last();
    switch (request.header.kind) {
      case app::RequestKind::kPage:
        TakePage(request);
        return true;
      case app::RequestKind::kEndDocument:
        Answer(1);
        return false;
      case app::RequestKind::kAbortDocument:
        Answer(1);
        throw UnreadableInput("aborted the document, " + taken);
      case app::RequestKind::kStartDocument:  // of another DC: one at a time
        Answer(0);
        break;
      default:
        waits_ = false;
        program_.AnswerQuestion(request, session_->Device().Surface());
    }
  }
}

DrawResult AppDocument::DrawPage(Graphics& canvas, const PageSetup& setup) {
  ++pages_;
  PageSetup own = setup;
  // The program has its glyph numbers from the fonts of this system, substitutes included.
  if (own.glyph_order == GlyphOrder::kAsSubstitute) own.glyph_order = GlyphOrder::kAssume;
  DrawResult result = page_->DrawPage(canvas, own);
  for (auto& [face, use] : result.fonts) use.assumed_glyphs = 0;
  return result;
}

void AppDocument::Answer(int32_t result, std::span<const std::byte> data) {
  if (waits_) program_.pipe_.Answer(result, data);
  waits_ = false;
}

void AppDocument::TakePage(const app::Request& request) {
  const auto mode = ReadAppMode(request.mode, program_.sheet_);
  if (!mode) throw UnreadableInput("sent a page without a sheet");
  mode_ = *mode;
  page_ = OpenPrintedPage(TakeFile(program_.page_file_));
}

}  // namespace quillo::host
