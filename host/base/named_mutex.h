#pragma once

#include "base/windows.h"

#include "base/system_owners.h"
#include "host/base/failure.h"

namespace quillo::host {

/// Holds a mutex that processes share by name, for the length of a scope. Waits at most a minute
/// for it; a mutex whose holder died is free.
class NamedMutex {
 public:
  /// Throws SystemFailure.
  explicit NamedMutex(const wchar_t* name) : mutex_(CreateMutexW(nullptr, FALSE, name)) {
    if (!mutex_) throw SystemFailure("cannot wait for other processes", "CreateMutex");
    const DWORD result = WaitForSingleObject(mutex_.Get(), 60'000);
    if (result != WAIT_OBJECT_0 && result != WAIT_ABANDONED) {
      throw SystemFailure("another process keeps the printer busy", "WaitForSingleObject", result);
    }
  }
  ~NamedMutex() { ReleaseMutex(mutex_.Get()); }
  NamedMutex(const NamedMutex&) = delete;
  NamedMutex& operator=(const NamedMutex&) = delete;

 private:
  KernelHandle mutex_;
};

}  // namespace quillo::host
