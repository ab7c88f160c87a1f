#pragma once

#include "base/windows.h"

#include <new>
#include <string_view>

namespace quillo::host {

/// Makes the next call of the named engine service fail as if memory were short; once. Null makes
/// nothing fail. It lets tests walk through a driver's failure paths.
void FailNextCall(const char* service);

/// Whether this call of `service` is the one to fail; forgets the wish.
bool TakeFailure(std::string_view service);

/// Runs the body of an engine service. Services are called from C: nothing may be thrown through
/// them, so a shortage of memory becomes `failure` and the thread's last error.
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
