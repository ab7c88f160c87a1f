#pragma once

#include "job/job.h"

namespace quillo {

/// Opens the metafile of a new page and describes the page to the client. False when the metafile
/// could not be created; the client then hears of the error, and nothing of the page remains.
bool BeginPage(CQloPrinter& job);

/// Ends drawing and closes the metafile; its file stays. False without an open page, and when GDI
/// could not finish it: the job has then failed.
bool ClosePageMetafile(CQloPrinter& job);

/// Closes the metafile, delivers it to the client and deletes its file. True when it was closed.
bool FinishPage(CQloPrinter& job);

/// Deletes the page's file, delivered or not, and clears what the job holds of the page.
void DropPageFile(CQloPrinter& job);

}  // namespace quillo
