#pragma once

#include "base/windows.h"

#include <utility>

namespace quillo {

/// Something that is kept from its last user for the next one, on whatever thread that is.
template <typename T>
class Spare {
 public:
  /// Keeps `next` and returns what was kept.
  T Exchange(T next) {
    AcquireSRWLockExclusive(&lock_);
    std::swap(kept_, next);
    ReleaseSRWLockExclusive(&lock_);
    return next;
  }

 private:
  SRWLOCK lock_ = SRWLOCK_INIT;
  T kept_{};
};

}  // namespace quillo
