#include "config/user/user_files.h"

#include "base/system_owners.h"
#include "config/user/as_user.h"
#include "config/user/user_paths.h"

namespace quillo {

namespace {

bool IsSeparator(wchar_t c) { return c == L'\\' || c == L'/'; }

bool IsOnLocalDrive(const wchar_t* path) {
  const auto letter = static_cast<wchar_t>(path[0] | 0x20);
  if (letter < L'a' || letter > L'z' || path[1] != L':' || !IsSeparator(path[2])) return false;
  const wchar_t root[] = {path[0], L':', L'\\', L'\0'};
  const UINT type = GetDriveTypeW(root);
  return type == DRIVE_FIXED || type == DRIVE_REMOVABLE || type == DRIVE_RAMDISK;
}

}  // namespace

bool UserFilesFolder(wchar_t (&folder)[MAX_PATH]) {
  if (UserTempFolder(folder, MAX_PATH) == 0) return false;
  const AsUser user;  // drive letters are each user's own
  return user && IsOnLocalDrive(folder);
}

bool IsPlainFolder(const wchar_t* path) {
  const DWORD attributes = GetFileAttributesW(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
         (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
}

bool IsPlainFileOrFree(const wchar_t* path) {
  const KernelHandle file(CreateFileW(
      path, FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
      OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  if (!file) return GetLastError() == ERROR_FILE_NOT_FOUND;
  BY_HANDLE_FILE_INFORMATION information = {};
  return GetFileInformationByHandle(file.Get(), &information) &&
         (information.dwFileAttributes &
          (FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY)) == 0 &&
         information.nNumberOfLinks <= 1;
}

}  // namespace quillo
