#pragma once

#include "base/windows.h"

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "fuzz/harness/failures.h"

namespace quillo::harness {

/// A system function as the driver calls it.
struct Import {
  std::string name;
  AnyFunction function;  // that is called: the system's, or a stand-in
  AnyFunction failure;   // null: cannot fail
  uint32_t calls = 0;    // since the last Arm
};

/// Stands between the driver and the functions that it imports or finds by GetProcAddress, counts
/// its calls and lets some of them fail. One in a process.
class Interposer {
 public:
  /// Takes over the import table of a module, for as long as that is loaded.
  void TakeOver(HMODULE module);

  /// Calls of the import `name` go to `function` from now on.
  template <typename Function>
  void Replace(std::string_view name, Function* function) {
    Replace(name, reinterpret_cast<AnyFunction>(reinterpret_cast<void*>(function)));
  }

  /// Counts from 0 again and makes a call of `import` fail: the `call`th one (1: the first), or
  /// all from it on. Without an import, none.
  void Arm(const Import* import = nullptr, uint32_t call = 0, bool and_later = false);
  /// Since Arm.
  [[nodiscard]] uint32_t Failures() const { return failures_; }

  /// In the order in which they were found, which is always the same. Never moved.
  std::deque<Import> imports;
  /// Where the driver is; noted when a call fails.
  const char* phase = "";
  const char* phase_of_failure = "";

 private:
  void Replace(std::string_view name, AnyFunction function);
  friend AnyFunction ChooseFunction(Import* import);
  static FARPROC WINAPI FindLate(HMODULE module, const char* name);

  /// Code that calls an import through the interposer. Lives as long as the process.
  void* GateTo(const std::string& library, const std::string& name, void* function);

  const Import* failing_ = nullptr;
  uint32_t failing_call_ = 0;
  bool and_later_ = false;
  uint32_t failures_ = 0;
};

extern Interposer interposer;

}  // namespace quillo::harness
