#include "fuzz/harness/failures.h"

#include "base/windows.h"

#include <algorithm>
#include <string>

namespace quillo::harness {
namespace {

template <uintptr_t kResult, DWORD kError = ERROR_NOT_ENOUGH_MEMORY>
uintptr_t WINAPI FailWith(uintptr_t, uintptr_t, uintptr_t, uintptr_t) {
  SetLastError(kError);
  return kResult;
}

template <uintptr_t kResult>
uintptr_t WINAPI ReleaseAndFailWith(uintptr_t a, uintptr_t b, uintptr_t c, uintptr_t d) {
  released_by(a, b, c, d);
  SetLastError(ERROR_INVALID_HANDLE);
  return kResult;
}

/// The metafile is closed, and lost.
uintptr_t WINAPI CloseAndLose(uintptr_t dc, uintptr_t, uintptr_t, uintptr_t) {
  DeleteEnhMetaFile(reinterpret_cast<HENHMETAFILE>(released_by(dc, 0, 0, 0)));
  return FailWith<0>(0, 0, 0, 0);
}

constexpr AnyFunction kZero = FailWith<0>;
constexpr AnyFunction kAllOnes = FailWith<UINTPTR_MAX>;
constexpr AnyFunction kOnes32 = FailWith<UINT32_MAX>;
constexpr AnyFunction kStatus = FailWith<ERROR_NOT_ENOUGH_MEMORY>;
constexpr AnyFunction kResult = FailWith<static_cast<uint32_t>(E_OUTOFMEMORY)>;
constexpr AnyFunction kReleased = ReleaseAndFailWith<0>;

/// The functions that do not fail with 0, or not at all; names between blanks.
constexpr struct {
  AnyFunction failure;
  std::string_view names;
} kFailures[] = {
    {nullptr,
     " DeleteCriticalSection EnterCriticalSection InitializeCriticalSection LeaveCriticalSection"
     " FlsGetValue TlsGetValue GetCurrentProcess GetCurrentProcessId GetCurrentThread GetLastError"
     " SetLastError GetProcessHeap GetVersion GlobalHandle GlobalUnlock GlobalMemoryStatus MulDiv"
     " Sleep VirtualProtect VirtualQuery lstrcmpW lstrlenW CharLowerW IntersectRect wsprintfW"
     " MessageBoxW OutputDebugStringW CoTaskMemFree GetDriveTypeW"
     " PATHOBJ_vEnumStart PATHOBJ_bEnum PATHOBJ_vGetBounds STROBJ_vEnumStart "},
    {kAllOnes, " CreateFileW FlsAlloc "},
    {kOnes32,
     " GetFileAttributesW GetFontData SetBkColor SetTextColor SetTextAlign RealizePalette"
     " STROBJ_bEnum "},
    {kStatus,
     " RegCreateKeyExW RegEnumKeyExW RegOpenKeyExW RegQueryInfoKeyW RegQueryValueExW RegQueryValueW"
     " RegSetValueExW RegSetValueW RegOpenCurrentUser GetPrinterDataW SetPrinterDataW "},
    {kResult,
     " CoInitializeEx CoMarshalInterface CoUnmarshalInterface CreateStreamOnHGlobal"
     " StgCreateDocfile StgOpenStorage SafeArrayAccessData CoSetProxyBlanket CLSIDFromString "},
    {kReleased,
     " CloseHandle DeleteFileW FreeLibrary HeapFree HeapDestroy FlsFree UnmapViewOfFile"
     " ClosePrinter DeleteDC DeleteObject DeleteEnhMetaFile ReleaseDC EngDeleteSurface"
     " EngDeletePalette EngDeletePath CoUninitialize SysFreeString FreeSid RevertToSelf "},
    {ReleaseAndFailWith<UINTPTR_MAX>, " GlobalFree LocalFree "},
    {ReleaseAndFailWith<ERROR_INVALID_HANDLE>, " RegCloseKey "},
    {ReleaseAndFailWith<static_cast<uint32_t>(E_UNEXPECTED)>,
     " SafeArrayDestroy SafeArrayUnaccessData CoReleaseMarshalData "},
    {CloseAndLose, " CloseEnhMetaFile "},
};

}  // namespace

AnyFunction released_by = nullptr;

AnyFunction FailureOf(std::string_view library, std::string_view function) {
  if (library == "msvcrt.dll") return nullptr;
  std::string name(function);
  name.insert(0, 1, ' ').push_back(' ');
  const auto* row = std::ranges::find_if(kFailures, [&name](const auto& failures) {
    return failures.names.find(name) != std::string_view::npos;
  });
  return row != std::end(kFailures) ? row->failure : kZero;
}

}  // namespace quillo::harness
