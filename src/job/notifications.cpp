#include "job/notifications.h"

#include "base/system_owners.h"
#include "job/client_reference.h"

namespace quillo {

namespace {

constexpr size_t kPageSlots = 18;

/// The code of NotifyError: a page metafile could not be created or closed.
constexpr LONG kPageError = -295;

LONG IdOf(const CQloPrinter& job) { return static_cast<LONG>(job.job_id); }

/// The job as the spooler knows it (a JOB_INFO_1W), or empty.
HeapBlock ReadJobInfo(const CQloPrinter& job) {
  DWORD needed = 0;
  GetJobW(job.printer, job.job_id, 1, nullptr, 0, &needed);
  // The job can grow between the two calls; retry once with the size then asked for.
  for (int attempt = 0; attempt < 2 && needed != 0; ++attempt) {
    const DWORD size = needed;
    HeapBlock info(size);
    if (!info) break;
    if (GetJobW(job.printer, job.job_id, 1, info.As<BYTE>(), size, &needed)) return info;
    if (GetLastError() != ERROR_INSUFFICIENT_BUFFER) break;
  }
  return {};
}

bool ClientConnected(const CQloPrinter& job) {
  return (job.state & kClientNotConnected) == 0 && job.client;
}

}  // namespace

void NotifyJobStart(CQloPrinter& job) {
  if (!ClientConnected(job)) return;
  if (const HeapBlock info = ReadJobInfo(job)) {
    const auto& names = *info.As<JOB_INFO_1W>();
    job.printer_name.Reset(SysAllocString(names.pPrinterName));
    job.document_name.Reset(SysAllocString(names.pDocument));
  }
  job.client->NotifyJobStart(job.printer_name.Get(), IdOf(job), job.document_name.Get());
}

void NotifyFontsFile(const CQloPrinter& job, const wchar_t* path) {
  if (!ClientConnected(job)) return;
  const Bstr file(SysAllocString(path));
  if (file) job.client->NotifyFontsFile(job.printer_name.Get(), IdOf(job), 0, file.Get());
}

void NotifyDocumentEnd(const CQloPrinter& job) {
  if (ClientConnected(job)) job.client->NotifyDocumentEnd(job.printer_name.Get(), IdOf(job));
}

void NotifyJobEnd(const CQloPrinter& job) {
  if (ClientConnected(job)) job.client->NotifyJobEnd(job.printer_name.Get(), IdOf(job));
}

void NotifyPageError(const CQloPrinter& job) {
  if (ClientConnected(job)) job.client->NotifyError(job.printer_name.Get(), IdOf(job), kPageError);
}

ComPtr<IQuilloPage> OpenClientPage(const CQloPrinter& job) {
  if (!ClientConnected(job)) return {};
  ComPtr<IQuilloPage> page;
  if (FAILED(job.client->GetPageObject(page.Receive()))) return {};
  if (page && !IsCallable(*page.Get(), kPageSlots)) return {};
  if (page) job.client->NotifyPageStart(job.printer_name.Get(), IdOf(job), page.Get());
  return page;
}

void NotifyPage(const CQloPrinter& job, IQuilloPage* page) {
  if (ClientConnected(job)) job.client->NotifyPage(job.printer_name.Get(), IdOf(job), page);
}

HRESULT NotifyEmbeddedFont(const CQloPrinter& job, const wchar_t* path) {
  if (!ClientConnected(job)) return S_OK;
  const Bstr file(SysAllocString(path));
  return file ? job.client->NotifyEmbeddedFont(file.Get()) : E_OUTOFMEMORY;
}

}  // namespace quillo
