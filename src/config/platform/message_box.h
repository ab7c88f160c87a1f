#pragma once

#include "base/windows.h"

#include "base/owner.h"

// Every message that the product shows goes through ShowMessageBox. A missing text shows as empty.

namespace quillo {

/// Memory that a system function allocated for LocalFree.
struct LocalBlockTraits {
  using Type = void*;
  static constexpr Type kNull = nullptr;
  static void Release(Type block) { LocalFree(block); }
};
using LocalBlock = Owner<LocalBlockTraits>;

/// MessageBoxW without an owner window, and its result. Where nobody can see a box, as in the
/// spooler's session, the text goes to the debugger, and the result is 0, as when
/// a box cannot be made.
int ShowMessageBox(const wchar_t* text, const wchar_t* caption, UINT style);

/// The system's text for an error code or HRESULT, in the user's language; empty when it has none.
LocalBlock SystemMessage(DWORD code);

/// A string of a module's string table, cut at 1023 characters; empty when there is none.
///
/// Compatibility: all strings of the process share one buffer, so each call overwrites what the
/// previous one returned. Kept for callers that hold on to the pointer.
const wchar_t* ResourceString(HMODULE module, UINT id);

/// Shows a text under a caption, both from a module's string table and cut at 511 characters.
int ShowResourceMessage(HMODULE module, UINT text, UINT caption, UINT style);

/// Shows the system's text for the thread's last error.
void ShowLastError();

}  // namespace quillo
