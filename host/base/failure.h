#pragma once

#include "base/windows.h"

#include <stdexcept>
#include <string>

namespace quillo::host {

/// A system call that failed. The message states what could not be done, which call failed, and
/// the system's own reason.
class SystemFailure : public std::runtime_error {
 public:
  /// `what` reads like "cannot open the printer"; `error` is a Windows error code or an HRESULT.
  SystemFailure(const std::string& what, const std::string& call, DWORD error = GetLastError());
};

/// Results that could not be written or read back.
class ResultFailure : public SystemFailure {
 public:
  using SystemFailure::SystemFailure;
};

/// Throws SystemFailure when `result` is a failure; `what` and `call` as there.
inline void CheckResult(HRESULT result, const char* what, const char* call) {
  if (FAILED(result)) throw SystemFailure(what, call, static_cast<DWORD>(result));
}

/// The system's text for an error code or HRESULT, in one line: "Access denied. (error 5)".
std::string DescribeError(DWORD error);

}  // namespace quillo::host
