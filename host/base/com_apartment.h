#pragma once

#include "base/windows.h"

#include <objbase.h>

#include "host/base/failure.h"

namespace quillo::host {

/// The multithreaded apartment of COM, for the length of a scope.
class ComApartment {
 public:
  /// Throws SystemFailure.
  ComApartment() {
    CheckResult(CoInitializeEx(nullptr, COINIT_MULTITHREADED), "cannot use COM", "CoInitializeEx");
  }
  ~ComApartment() { CoUninitialize(); }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;
};

}  // namespace quillo::host
