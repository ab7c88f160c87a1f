#pragma once

#include "base/windows.h"

namespace quillo {

/// Starts the client for a job, as this process's user and in its session, and waits until the
/// driver can reach it: until the job's connection file stands. False, with the last error, when it
/// does not start, ends, or takes longer than twenty seconds.
///
/// The program is the one beside this DLL, where only administrators can put one. Nothing of the
/// printer's settings names it: those come from whoever runs the print server.
bool StartClient(DWORD job_id);

}  // namespace quillo
