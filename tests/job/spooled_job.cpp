#include "job/spooled_job.h"

#include <gtest/gtest.h>

#include "capture/records/types.h"
#include "host/printer/printer_setup.h"
#include "host/printer/sheet.h"
#include "job/document_end.h"
#include "job/record_sink.h"

namespace quillo::test {

namespace fs = std::filesystem;

constexpr int kDpi = 300;

SpooledJob::SpooledJob() {
  // The client lives in this apartment, as it would in a process of its own.
  EXPECT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)));
  host::EnsurePrinter(host::kPrinterName, kDpi, {});
  spool_job_.emplace(host::kPrinterName, L"A document");
  // What a run that broke off left would be taken for this job's client.
  for (const bool in_session_folder : {false, true}) fs::remove(Connection(in_session_folder));
  RemoveDirectoryW((TempFolder() + L"\\QLOFNT500").c_str());
  files_before_ = LeftFiles();
  heaps_before_ = GetProcessHeaps(0, nullptr);
}

SpooledJob::~SpooledJob() {
  EXPECT_EQ(LeftFiles(), files_before_);
  EXPECT_EQ(GetProcessHeaps(0, nullptr), heaps_before_);
  EXPECT_EQ(client_.CountLeaks(), 0);
  CoUninitialize();
  // No job is left in the apartment: another kind may be entered.
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
  CoUninitialize();
}

CQloPrinter* SpooledJob::Open() {
  CQloPrinter* job = OpenJob(spool_job_->Printer(), Id());
  EXPECT_NE(job, nullptr);
  const DeviceMode mode = host::MakeDeviceMode(host::kPrinterName, {.paper = DMPAPER_A4}, kDpi);
  Send(job, records::REC_DEVMODE, &mode, sizeof mode);
  return job;
}

void SpooledJob::Send(CQloPrinter* job, uint32_t type, const void* payload, uint32_t size) {
  const uint32_t header[] = {type, size};
  WriteJob(job, header, sizeof header, nullptr);
  WriteJob(job, payload, size, nullptr);
}

void SpooledJob::Close(CQloPrinter* job) {
  EndDocument(job);
  SignalEndAndDestroy(job);
}

int SpooledJob::LeftFiles() {
  int count = 0;
  for (const auto& entry : fs::directory_iterator(TempFolder())) {
    const std::wstring name = entry.path().filename();
    count += (name.starts_with(L"VXP") && name.ends_with(L".tmp")) || name.ends_with(L".fpt") ||
             name.ends_with(L".stg");
  }
  return count;
}

}  // namespace quillo::test
