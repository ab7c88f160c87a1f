// Memory as the sanitizer sees it, and the last error.
#include "base/windows.h"

#include <cstdlib>

namespace {

// Nothing that is fuzzed here needs more.
constexpr SIZE_T kLargest = 64 << 20;

thread_local DWORD last_error = 0;

void* Allocate(SIZE_T size) { return size <= kLargest ? std::calloc(1, size) : nullptr; }

}  // namespace

extern "C" {

DWORD WINAPI GetLastError() { return last_error; }
void WINAPI SetLastError(DWORD error) { last_error = error; }

HANDLE WINAPI GetProcessHeap() { return &last_error; }
void* WINAPI HeapAlloc(HANDLE, DWORD, SIZE_T size) { return Allocate(size); }
BOOL WINAPI HeapFree(HANDLE, DWORD, void* block) {
  std::free(block);
  return TRUE;
}
HGLOBAL WINAPI GlobalAlloc(UINT, SIZE_T size) { return Allocate(size); }
HGLOBAL WINAPI GlobalHandle(LPCVOID block) { return const_cast<void*>(block); }
void* WINAPI GlobalLock(HGLOBAL block) { return block; }
BOOL WINAPI GlobalUnlock(HGLOBAL) { return TRUE; }
HGLOBAL WINAPI GlobalFree(HGLOBAL block) {
  std::free(block);
  return nullptr;
}
BOOL WINAPI CloseHandle(HANDLE) { return TRUE; }

}  // extern "C"
