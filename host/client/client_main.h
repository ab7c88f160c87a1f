#pragma once

#include "base/windows.h"

#include "host/client/client_fault.h"

namespace quillo::host {

/// The client of one job, in a process of its own: makes the connection file, takes the driver's
/// calls and copies what they announce into the current folder, until standard input ends. The
/// result is the process's exit code.
///
/// Writes a line of JSON to standard output for each thing that happens: {"ready": true} when the
/// driver may begin, {"call": ...} for each call as ClientObject reports it, {"job_end_event": ...}
/// at the end: whether the event was set. Failures go to standard error.
int RunClient(DWORD job_id, ClientFault fault);

}  // namespace quillo::host
