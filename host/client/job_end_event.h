#pragma once

#include "base/windows.h"

#include "base/system_owners.h"

namespace quillo::host {

/// The event that the driver sets at the end of a job, for the client to make before the job
/// starts. Throws SystemFailure.
KernelHandle MakeJobEndEvent(DWORD job_id);

}  // namespace quillo::host
