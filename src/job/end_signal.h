#pragma once

#include "base/windows.h"

namespace quillo {

/// Tells every process that waits on the job, in any session, that its output is complete. The
/// event lives on only where somebody else holds it.
void SignalJobEnd(DWORD job_id);

}  // namespace quillo
