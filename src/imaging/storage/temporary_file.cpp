#include "imaging/storage/temporary_file.h"

#include "imaging/bitmap/kernel_settings.h"
#include "imaging/pixels/result.h"

namespace quillo::imaging {
namespace {

OVERLAPPED PositionOf(uint64_t offset) {
  OVERLAPPED position{};
  position.Offset = static_cast<DWORD>(offset);
  position.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return position;
}

bool MakeName(wchar_t (&name)[MAX_PATH]) {
  const wchar_t* directory = ThreadSettings().temporary_directory;
  wchar_t user_directory[MAX_PATH + 1];
  if (directory[0] == L'\0') {
    const DWORD length = GetTempPathW(MAX_PATH + 1, user_directory);
    if (length == 0 || length > MAX_PATH) return false;
    directory = user_directory;
  }
  return GetTempFileNameW(directory, L"QK", 0, name) != 0;
}

/// Writes one zero byte at the end and goes back to the start.
bool Extend(HANDLE file, uint64_t size) {
  LARGE_INTEGER last{};
  last.QuadPart = static_cast<LONGLONG>(size - 1);
  const std::byte zero{};
  DWORD written = 0;
  return SetFilePointerEx(file, last, nullptr, FILE_BEGIN) &&
         WriteFile(file, &zero, 1, &written, nullptr) && written == 1 &&
         SetFilePointerEx(file, LARGE_INTEGER{}, nullptr, FILE_BEGIN);
}

}  // namespace

int MakeTemporaryFile(uint64_t size, KernelHandle* file) {
  wchar_t name[MAX_PATH];
  if (!MakeName(name)) return kOutOfMemory;
  KernelHandle made(CreateFileW(name, GENERIC_READ | GENERIC_WRITE,
                                FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS,
                                FILE_FLAG_DELETE_ON_CLOSE, nullptr));
  if (!made) {
    DeleteFileW(name);  // GetTempFileName has made it
    return kOutOfMemory;
  }
  if (!Extend(made.Get(), size)) return kFileError;
  *file = std::move(made);
  return kSuccess;
}

bool ReadAt(HANDLE file, uint64_t offset, void* data, uint32_t size) {
  OVERLAPPED position = PositionOf(offset);
  DWORD done = 0;
  return ReadFile(file, data, size, &done, &position) && done == size;
}

bool WriteAt(HANDLE file, uint64_t offset, const void* data, uint32_t size) {
  OVERLAPPED position = PositionOf(offset);
  DWORD done = 0;
  return WriteFile(file, data, size, &done, &position) && done == size;
}

}  // namespace quillo::imaging
