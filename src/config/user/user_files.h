#pragma once

#include "base/windows.h"

// The printing user's files, in folders where others of the user's programs write, too. All but
// UserFilesFolder are called as the user (AsUser).
namespace quillo {

/// The printing user's TEMP folder (UserTempFolder), for files of a job. False when there is none,
/// or when it is not an absolute path on a local drive.
bool UserFilesFolder(wchar_t (&folder)[MAX_PATH]);

/// Whether `path` is a folder and not a link to one.
bool IsPlainFolder(const wchar_t* path);

/// Whether `path` can be opened or replaced without touching a file elsewhere: no file has this
/// name, or one that is no link and has no other name.
bool IsPlainFileOrFree(const wchar_t* path);

}  // namespace quillo
