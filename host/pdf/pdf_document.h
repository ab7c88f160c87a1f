#pragma once

#include "base/windows.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host/cairo/cairo_owners.h"
#include "host/pdf/pdf_fonts.h"
#include "host/pdf/pdf_page.h"

namespace quillo::host::pdf {

/// A PDF file of pages that the driver made. It is written beside its place and moved there when it
/// is whole. Besides a page table and the fonts, memory holds one page at a time.
class PdfDocument {
 public:
  /// Throws ResultFailure.
  explicit PdfDocument(std::filesystem::path path);
  /// Deletes what has been written of a file that is not finished.
  ~PdfDocument();
  PdfDocument(const PdfDocument&) = delete;
  PdfDocument& operator=(const PdfDocument&) = delete;

  /// `title`: UTF-8.
  void SetTitle(const std::string& title);
  /// Adds a page's metafile. The sheet's sides are in 0.1 mm. Needs COM on this thread. Throws
  /// ResultFailure.
  void AddPage(const std::filesystem::path& metafile, double width, double height);
  /// Completes the file; a file without pages is dropped. Throws ResultFailure.
  void Finish();

  int Pages() const { return pages_; }
  const Approximations& Approximated() const { return approximations_; }
  /// What pages lack of their metafiles: phrases, the first few.
  const std::vector<std::string>& Faults() const { return faults_; }

 private:
  static cairo_status_t Write(void* document, const unsigned char* bytes, unsigned length);
  /// Throws when cairo or the file has failed.
  void Check() const;
  [[noreturn]] void Fail(const char* call, DWORD error) const;

  const std::filesystem::path path_;
  std::ofstream file_;
  PdfFonts fonts_;
  CairoSurface surface_;
  Approximations approximations_;
  std::vector<std::string> faults_;
  int pages_ = 0;
  double first_height_ = 0;  // points
  bool finished_ = false;
};

}  // namespace quillo::host::pdf
