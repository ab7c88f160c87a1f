#pragma once

#include "base/windows.h"

#include "base/system_owners.h"

// Who prints, and where that user's files go. The driver runs in the spooler's process, in the
// printing user's context where it can obtain it. Failures return an empty token, 0
// or false.

namespace quillo {

/// A primary token of the printing user with all access; empty when there is none.
KernelHandle UserToken();

/// The printing user's TEMP folder, with the user's own values for the variables in it. `size` is
/// in characters. Non-zero on success, 0 on failure.
///
/// Compatibility: when the user has neither TMP nor TEMP and the expansion fails too, the result is
/// the length of the spooler's own folder although `buffer` is empty. Kept for the client, which
/// looks for files where earlier releases left them.
DWORD UserTempFolder(wchar_t* buffer, DWORD size);

/// The session in which the printing user is logged on.
bool PrintingUserSession(DWORD& session);

}  // namespace quillo
