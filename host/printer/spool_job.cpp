#include "host/printer/spool_job.h"

#include "host/base/failure.h"

namespace quillo::host {

namespace {

constexpr char kCannotStart[] = "cannot start a job on the printer";

std::wstring MakeTemporaryFile() {
  wchar_t folder[MAX_PATH + 1];
  wchar_t file[MAX_PATH];
  if (GetTempPathW(MAX_PATH + 1, folder) == 0 || GetTempFileNameW(folder, L"qlo", 0, file) == 0) {
    throw SystemFailure(kCannotStart, "GetTempFileName");
  }
  return file;
}

// Wine counts jobs per process, and refuses a number whose spool file another process has open. The
// driver names files and events by the number, so the next free one is taken.
constexpr int kMaxAttempts = 1000;

}  // namespace

SpoolJob::SpoolJob(const std::wstring& printer, const std::wstring& document) {
  std::wstring name = printer;
  if (!OpenPrinterW(name.data(), printer_.Receive(), nullptr)) {
    throw SystemFailure("cannot open the printer", "OpenPrinter");
  }
  output_ = MakeTemporaryFile();
  std::wstring title = document;
  std::wstring data_type = L"RAW";
  DOC_INFO_1W info{title.data(), output_.data(), data_type.data()};
  for (int attempt = 0; id_ == 0; ++attempt) {
    id_ = StartDocPrinterW(printer_.Get(), 1, reinterpret_cast<BYTE*>(&info));
    const DWORD error = GetLastError();
    if (id_ != 0 || (error == ERROR_SHARING_VIOLATION && attempt < kMaxAttempts)) continue;
    DeleteFileW(output_.c_str());
    throw SystemFailure(kCannotStart, "StartDocPrinter", error);
  }
}

SpoolJob::~SpoolJob() {
  EndDocPrinter(printer_.Get());
  DeleteFileW(output_.c_str());
}

}  // namespace quillo::host
