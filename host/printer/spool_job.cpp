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

/// False when another process has a job of this id.
bool ClaimJobId(DWORD id, KernelHandle& claim) {
  const std::wstring name = L"Local\\QuilloPrintJob" + std::to_wstring(id);
  claim.Reset(CreateMutexW(nullptr, FALSE, name.c_str()));
  return GetLastError() != ERROR_ALREADY_EXISTS;
}

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
  // Wine counts jobs per process, and the id names files and events: take the first free one.
  for (;;) {
    id_ = StartDocPrinterW(printer_.Get(), 1, reinterpret_cast<BYTE*>(&info));
    if (id_ == 0) {
      const DWORD error = GetLastError();
      DeleteFileW(output_.c_str());
      throw SystemFailure(kCannotStart, "StartDocPrinter", error);
    }
    if (ClaimJobId(id_, id_claim_)) return;
    EndDocPrinter(printer_.Get());
  }
}

SpoolJob::~SpoolJob() {
  EndDocPrinter(printer_.Get());
  DeleteFileW(output_.c_str());
}

}  // namespace quillo::host
