#include "host/pdf/pdf_document.h"

#include <algorithm>
#include <cairo-pdf.h>
#include <cmath>
#include <cstdio>
#include <utility>
#include <vector>

#include "host/base/failure.h"
#include "host/base/file_content.h"
#include "host/base/text.h"
#include "host/emf_format/page_mapping.h"
#include "host/emf_format/reader.h"
#include "host/emf_player/emf_player.h"
#include "host/pdf/opening_view.h"
#include "host/pdf/unfinished.h"
#include "version.h"

namespace quillo::host::pdf {

namespace {

constexpr size_t kMaxFaults = 8;
constexpr double kPointsPerInch = 72, kTenthsPerInch = 254;

/// "2024-02-29T12:34:56+01:00"
std::string Now() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  TIME_ZONE_INFORMATION zone{};
  const bool summer = GetTimeZoneInformation(&zone) == TIME_ZONE_ID_DAYLIGHT;
  const LONG minutes = -(zone.Bias + (summer ? zone.DaylightBias : zone.StandardBias));
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d%c%02ld:%02ld", now.wYear,
                now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, minutes < 0 ? '-' : '+',
                std::abs(minutes) / 60, std::abs(minutes) % 60);
  return text;
}

}  // namespace

PdfDocument::PdfDocument(std::filesystem::path path)
    : path_(std::move(path)), file_(Unfinished(path_), std::ios::binary) {
  if (!file_) Fail("CreateFile", GetLastError());
  surface_.reset(cairo_pdf_surface_create_for_stream(Write, this, kPointsPerInch, kPointsPerInch));
  Check();
  cairo_pdf_surface_set_metadata(surface_.get(), CAIRO_PDF_METADATA_CREATOR,
                                 "VORNIX Quillo " QUILLO_VERSION);
  const std::string now = Now();
  for (const auto date : {CAIRO_PDF_METADATA_CREATE_DATE, CAIRO_PDF_METADATA_MOD_DATE}) {
    cairo_pdf_surface_set_metadata(surface_.get(), date, now.c_str());
  }
}

PdfDocument::~PdfDocument() {
  surface_.reset();
  if (finished_) return;
  file_.close();
  DeleteFileW(Unfinished(path_).c_str());
}

void PdfDocument::SetTitle(const std::string& title) {
  cairo_pdf_surface_set_metadata(surface_.get(), CAIRO_PDF_METADATA_TITLE, title.c_str());
}

void PdfDocument::AddPage(const std::filesystem::path& metafile, double width, double height) {
  const std::vector<std::byte> content = ReadContent(metafile).value_or(std::vector<std::byte>());
  try {
    emf::MetafileReader reader(content);
    const emf::FrameRect frame = emf::FrameOf(reader.header());
    const double points_per_tenth = kPointsPerInch / kTenthsPerInch;
    cairo_pdf_surface_set_size(surface_.get(), width * points_per_tenth, height * points_per_tenth);
    ++pages_;
    if (pages_ == 1) first_height_ = height * points_per_tenth;
    cairo_pdf_surface_set_page_label(surface_.get(), std::to_string(pages_).c_str());

    const double dpi = frame.width / (width / kTenthsPerInch);
    const CairoContext context(cairo_create(surface_.get()));
    cairo_scale(context.get(), width * points_per_tenth / frame.width,
                height * points_per_tenth / frame.height);
    PdfPage page(context.get(), dpi, fonts_, approximations_);
    emf::EmfPlayer(reader, {1, 0, 0, 1, -frame.left, -frame.top}, page).Play();
    if (const cairo_status_t status = cairo_status(context.get()); status != CAIRO_STATUS_SUCCESS) {
      Fail(cairo_status_to_string(status), ERROR_INVALID_DATA);
    }
    cairo_surface_show_page(surface_.get());
    for (const emf::MetafileFault& fault : reader.faults()) {
      if (fault.harmless || faults_.size() == kMaxFaults) continue;
      faults_.push_back("page " + std::to_string(pages_) + ": " + emf::Describe(fault));
    }
  } catch (const emf::UnreadableMetafile& refused) {
    throw ResultFailure("the page " + ToUtf8(metafile.wstring()) + " " + refused.what(),
                        "reading it", ERROR_INVALID_DATA);
  }
  Check();
}

void PdfDocument::Finish() {
  cairo_surface_finish(surface_.get());
  Check();
  file_.flush();
  const std::filesystem::path unfinished = Unfinished(path_);
  std::ifstream written(unfinished, std::ios::binary);
  const auto read = [&written](size_t offset, size_t length) {
    std::string bytes(length, '\0');
    written.clear();
    written.seekg(static_cast<std::streamoff>(offset));
    written.read(bytes.data(), static_cast<std::streamsize>(length));
    bytes.resize(static_cast<size_t>(written.gcount()));
    return bytes;
  };
  file_ << OpenAtPageWidth(read, static_cast<size_t>(file_.tellp()), first_height_);
  written.close();
  file_.close();
  if (!file_) Fail("WriteFile", GetLastError());
  if (pages_ == 0) return;
  if (!MoveFileExW(unfinished.c_str(), path_.c_str(), MOVEFILE_REPLACE_EXISTING)) {
    Fail("MoveFileEx", GetLastError());
  }
  finished_ = true;
}

cairo_status_t PdfDocument::Write(void* document, const unsigned char* bytes, unsigned length) {
  std::ofstream& file = static_cast<PdfDocument*>(document)->file_;
  file.write(reinterpret_cast<const char*>(bytes), length);
  return file ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR;
}

void PdfDocument::Check() const {
  const cairo_status_t status = cairo_surface_status(surface_.get());
  if (status == CAIRO_STATUS_SUCCESS) return;
  const DWORD error = GetLastError();
  if (status == CAIRO_STATUS_WRITE_ERROR) Fail("WriteFile", error);
  Fail(cairo_status_to_string(status), ERROR_INVALID_DATA);
}

void PdfDocument::Fail(const char* call, DWORD error) const {
  throw ResultFailure("cannot write " + ToUtf8(path_.wstring()), call,
                      error != ERROR_SUCCESS ? error : DWORD{ERROR_WRITE_FAULT});
}

}  // namespace quillo::host::pdf
