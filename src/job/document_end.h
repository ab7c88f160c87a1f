#pragma once

#include "job/job.h"

namespace quillo {

/// Drops what is left of a page that was never sent, hands the font-options file to the client and
/// announces the end of the document. A null, foreign or invalid job is left alone.
void EndDocument(CQloPrinter* job);

}  // namespace quillo
