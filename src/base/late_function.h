#pragma once

#include "base/windows.h"

#include "base/kernel_owners.h"

namespace quillo {

/// A system function that may be missing: its library is loaded and the function looked up when
/// this is made, and the library let go at its end. Test it before calling.
///
///   const LateFunction<decltype(OpenThreadToken)> open(L"Advapi32.dll", "OpenThreadToken");
template <typename Function>
class LateFunction;

template <typename Result, typename... Arguments>
class LateFunction<Result(Arguments...)> {
 public:
  LateFunction(const wchar_t* library, const char* name) : library_(LoadLibraryW(library)) {
    if (!library_) return;
    // By way of void*: the declared type of GetProcAddress's result is not that of the function.
    function_ = reinterpret_cast<Result (*)(Arguments...)>(
        reinterpret_cast<void*>(GetProcAddress(library_.Get(), name)));
  }
  explicit operator bool() const { return function_ != nullptr; }
  Result operator()(Arguments... arguments) const { return function_(arguments...); }

 private:
  Library library_;
  Result (*function_)(Arguments...) = nullptr;
};

}  // namespace quillo
