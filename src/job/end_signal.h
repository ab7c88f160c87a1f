#pragma once

#include "base/windows.h"

namespace quillo {

/// Signals to every process that waits on the job, in any session, that its output is complete. The
/// driver keeps no handle: the event lives on only where a waiter holds it.
void SignalJobEnd(DWORD job_id);

}  // namespace quillo
