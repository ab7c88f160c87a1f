#pragma once

#include "base/windows.h"

namespace quillo::test {

/// Replaces one import of this program for a scope, so that a test can watch or fail a system call.
/// The function's name as imported ("SetMiterLimit"); an import that the program does not have
/// fails the test. `replacement` has the function's own signature.
class ImportPatch {
 public:
  template <typename Function>
  ImportPatch(const char* name, Function* replacement)
      : ImportPatch(name, reinterpret_cast<void*>(replacement), 0) {}
  ImportPatch(const ImportPatch&) = delete;
  ImportPatch& operator=(const ImportPatch&) = delete;
  ~ImportPatch();

  /// The function itself, for a replacement that passes calls on. (Its name leads to the patch.)
  template <typename Function>
  [[nodiscard]] Function* Original() const {
    return reinterpret_cast<Function*>(original_);
  }

 private:
  ImportPatch(const char* name, void* replacement, int);

  void** entry_;    // of the import table; null when there is none
  void* original_;  // the system's function
};

}  // namespace quillo::test
