#pragma once

#include "base/windows.h"

#include <new>
#include <string_view>

namespace quillo::host {

/// Makes the next call of the named engine service fail, once, as if out of memory; null: none. For
/// tests of a driver's failure paths.
void FailNextCall(const char* service);

/// Whether this call of `service` is the one to fail; the next one will not.
bool TakeFailure(std::string_view service);

/// Runs the body of an engine service. As services are called from C, nothing may be thrown:
/// running out of memory becomes `failure` and the thread's last error.
template <typename Result, typename Body>
Result Service(std::string_view name, Result failure, Body body) noexcept {
  try {
    if (!TakeFailure(name)) return body();
  } catch (const std::bad_alloc&) {
  }
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return failure;
}

}  // namespace quillo::host
