// Memory as the sanitizer sees it, sections, and the last error. There are no files.
#include "platform/memory.h"

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <map>
#include <set>

namespace {

// Nothing that is fuzzed here needs more.
constexpr SIZE_T kLargest = 64 << 20;

thread_local DWORD last_error = 0;

void* Allocate(SIZE_T size) { return size <= kLargest ? std::calloc(1, size) : nullptr; }

int handles = 0;                          // made
std::map<HANDLE, std::set<void*>> heaps;  // but the process's, and their blocks
std::map<HANDLE, SharedBytes> sections;
std::map<const void*, SharedBytes> views;
void* thread_value;

HANDLE NewHandle() {
  return reinterpret_cast<HANDLE>(uintptr_t{0x1000} + 4 * static_cast<unsigned>(handles++));
}
HANDLE AddSection(const SharedBytes& bytes) {
  const HANDLE handle = NewHandle();
  sections[handle] = bytes;
  return handle;
}

}  // namespace

SharedBytes BytesOfSection(HANDLE section) { return sections.at(section); }
bool NoSectionsLeft() { return sections.empty() && views.empty(); }

extern "C" {

DWORD WINAPI GetLastError() { return last_error; }
void WINAPI SetLastError(DWORD error) { last_error = error; }

HANDLE WINAPI GetProcessHeap() { return &last_error; }
void* WINAPI HeapAlloc(HANDLE heap, DWORD, SIZE_T size) {
  void* block = Allocate(size);
  if (block != nullptr && heap != GetProcessHeap()) heaps.at(heap).insert(block);
  return block;
}
BOOL WINAPI HeapFree(HANDLE heap, DWORD, void* block) {
  if (heap != GetProcessHeap()) heaps.at(heap).erase(block);
  std::free(block);
  return TRUE;
}
HANDLE WINAPI HeapCreate(DWORD, SIZE_T, SIZE_T) {
  const HANDLE heap = NewHandle();
  heaps[heap] = {};
  return heap;
}
BOOL WINAPI HeapDestroy(HANDLE heap) {
  for (void* block : heaps.at(heap)) std::free(block);
  return heaps.erase(heap) != 0;
}
HGLOBAL WINAPI GlobalAlloc(UINT, SIZE_T size) { return Allocate(size); }
HGLOBAL WINAPI GlobalHandle(LPCVOID block) { return const_cast<void*>(block); }
void* WINAPI GlobalLock(HGLOBAL block) { return block; }
BOOL WINAPI GlobalUnlock(HGLOBAL) { return TRUE; }
HGLOBAL WINAPI GlobalFree(HGLOBAL block) {
  std::free(block);
  return nullptr;
}

HANDLE WINAPI CreateFileMappingW(HANDLE, SECURITY_ATTRIBUTES*, DWORD, DWORD high, DWORD low,
                                 LPCWSTR) {
  if (high != 0 || low > kLargest) return nullptr;
  return AddSection(std::make_shared<std::vector<std::byte>>(low));
}
void* WINAPI MapViewOfFile(HANDLE section, DWORD, DWORD, DWORD, SIZE_T) {
  const SharedBytes bytes = sections.at(section);
  views[bytes->data()] = bytes;
  return bytes->data();
}
BOOL WINAPI UnmapViewOfFile(LPCVOID address) { return views.erase(address) != 0; }
HANDLE WINAPI GetCurrentProcess() { return nullptr; }
BOOL WINAPI DuplicateHandle(HANDLE, HANDLE section, HANDLE, HANDLE* copy, DWORD, BOOL, DWORD) {
  *copy = AddSection(sections.at(section));
  return TRUE;
}
BOOL WINAPI CloseHandle(HANDLE section) { return sections.erase(section) != 0; }
void WINAPI GlobalMemoryStatus(MEMORYSTATUS* status) {
  status->dwTotalPhys = status->dwAvailPhys = status->dwAvailPageFile = SIZE_T{1} << 32;
}

HANDLE WINAPI CreateFileW(LPCWSTR, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE) {
  return INVALID_HANDLE_VALUE;
}
BOOL WINAPI DeleteFileW(LPCWSTR) { return FALSE; }
DWORD WINAPI GetTempPathW(DWORD, LPWSTR) { return 0; }
UINT WINAPI GetTempFileNameW(LPCWSTR, LPCWSTR, UINT, LPWSTR) { return 0; }
BOOL WINAPI ReadFile(HANDLE, void*, DWORD, DWORD*, OVERLAPPED*) { return FALSE; }
BOOL WINAPI WriteFile(HANDLE, LPCVOID, DWORD, DWORD*, OVERLAPPED*) { return FALSE; }
BOOL WINAPI SetFilePointerEx(HANDLE, LARGE_INTEGER, LARGE_INTEGER*, DWORD) { return FALSE; }

DWORD WINAPI FlsAlloc(PFLS_CALLBACK_FUNCTION) { return 1; }
BOOL WINAPI FlsFree(DWORD) { return TRUE; }
void* WINAPI FlsGetValue(DWORD) { return thread_value; }
BOOL WINAPI FlsSetValue(DWORD, void* value) {
  thread_value = value;
  return TRUE;
}
void WINAPI InitializeCriticalSection(CRITICAL_SECTION*) {}
void WINAPI DeleteCriticalSection(CRITICAL_SECTION*) {}
void WINAPI EnterCriticalSection(CRITICAL_SECTION*) {}
void WINAPI LeaveCriticalSection(CRITICAL_SECTION*) {}

INT WINAPI MulDiv(INT a, INT b, INT c) {
  if (c == 0) return -1;
  const int64_t product = int64_t{a} * b, half = std::abs(int64_t{c}) / 2;
  const int64_t result = (product + (product < 0 ? -half : half)) / c;
  return result < INT32_MIN || result > INT32_MAX ? -1 : static_cast<INT>(result);
}
BOOL WINAPI IntersectRect(RECT* out, const RECT* a, const RECT* b) {
  *out = {std::max(a->left, b->left), std::max(a->top, b->top), std::min(a->right, b->right),
          std::min(a->bottom, b->bottom)};
  if (out->left < out->right && out->top < out->bottom) return TRUE;
  *out = {};
  return FALSE;
}
INT WINAPI lstrcmpW(LPCWSTR a, LPCWSTR b) {
  const size_t length = std::min(std::wcslen(a), std::wcslen(b)) + 1;
  return std::wmemcmp(a, b, length);
}

}  // extern "C"
