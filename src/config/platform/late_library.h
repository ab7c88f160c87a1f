#pragma once

#include "base/windows.h"

#include "base/system_owners.h"

namespace quillo {

/// A system library that may be missing, loaded for as long as this lives. It is taken from the
/// system folder alone, whatever lies beside the program or on the path.
///
///   const LateLibrary security(L"Advapi32.dll");
///   auto* open = security.Find<decltype(OpenProcessToken)>("OpenProcessToken");
class LateLibrary {
 public:
  explicit LateLibrary(const wchar_t* name)
      : library_(LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32)) {}

  /// One of its functions, valid for as long as this lives; null when it or the library is missing.
  template <typename Function>
  [[nodiscard]] Function* Find(const char* name) const {
    if (!library_) return nullptr;
    // Through void*, because GetProcAddress declares another function type.
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(library_.Get(), name)));
  }

 private:
  Library library_;
};

}  // namespace quillo
