#pragma once

#include "base/windows.h"

#include "job/job.h"

// Notifications of the job to its client. Each call blocks until the client's process returns.
// Nothing is sent while no client is connected; a failing call ends its own step only.
namespace quillo {

/// Announces the job. Reads printer and document name from the spooler and keeps them in the job.
void NotifyJobStart(CQloPrinter& job);

void NotifyFontsFile(const CQloPrinter& job, const wchar_t* path);
void NotifyDocumentEnd(const CQloPrinter& job);
void NotifyJobEnd(const CQloPrinter& job);

/// A page metafile could not be created or closed.
void NotifyPageError(const CQloPrinter& job);

/// Gets the page's object from the client and announces the page. The object is empty on failure.
ComPtr<IQuilloPage> OpenClientPage(const CQloPrinter& job);

/// Delivers the page's file. `page` is null when the client did not hand out an object; it still
/// hears that a page is done.
void NotifyPage(const CQloPrinter& job, IQuilloPage* page);

/// Announces an embedded font file. S_OK when no client is connected: the job keeps the file.
HRESULT NotifyEmbeddedFont(const CQloPrinter& job, const wchar_t* path);

}  // namespace quillo
