#pragma once

#include "base/windows.h"

#include <map>
#include <string>

#include "support/import_patch.h"

namespace quillo::test {

/// For as long as it lives, GetProcAddress finds stand-ins for some functions, and does not find
/// others. One at a time.
class LateFunctions {
 public:
  LateFunctions() : patch_("GetProcAddress", Find) {
    find_ = patch_.Original<decltype(GetProcAddress)>();
  }
  ~LateFunctions() { functions_.clear(); }

  void Miss(const char* name) { functions_[name] = nullptr; }
  template <typename Function>
  void Replace(const char* name, Function* function) {
    functions_[name] = reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
  }
  void Restore() { functions_.clear(); }

 private:
  static FARPROC WINAPI Find(HMODULE module, const char* name) {
    const auto stand_in = functions_.find(name);
    return stand_in != functions_.end() ? stand_in->second : find_(module, name);
  }

  static inline std::map<std::string, FARPROC> functions_;
  static inline decltype(GetProcAddress)* find_ = nullptr;
  ImportPatch patch_;
};

}  // namespace quillo::test
