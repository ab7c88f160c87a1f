#pragma once

#include "base/windows.h"

#include "job/job.h"

// What the job tells its client. Every call crosses to the client's process and blocks until it
// answers. Nothing is sent while no client is connected; a failing call ends its own step only.
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

/// Delivers the page's file. A null `page`, which the client did not hand out, is passed on as it
/// is: the client still hears that a page is done.
void NotifyPage(const CQloPrinter& job, IQuilloPage* page);

/// Announces an embedded font file. S_OK when no client is connected: the job keeps the file.
HRESULT NotifyEmbeddedFont(const CQloPrinter& job, const wchar_t* path);

}  // namespace quillo
