#pragma once

#include "base/windows.h"

#include <utility>

namespace quillo {

/// Move-only owner of a platform resource.
///
/// `Traits` has `Type`, `kNull` (the value that owns nothing), `Release(Type)`, and optionally
/// `IsNull(Type)` where several values own nothing. The destructor and Reset preserve the thread's
/// last error, so that cleaning up never hides the cause of a failure.
template <typename Traits>
class Owner {
 public:
  using Type = typename Traits::Type;

  Owner() = default;
  explicit Owner(Type value) : value_(value) {}
  Owner(Owner&& other) noexcept : value_(other.Detach()) {}
  Owner& operator=(Owner&& other) noexcept {
    if (this != &other) Reset(other.Detach());
    return *this;
  }
  Owner(const Owner&) = delete;
  Owner& operator=(const Owner&) = delete;
  ~Owner() { Reset(); }

  [[nodiscard]] Type Get() const { return value_; }
  explicit operator bool() const { return !IsNull(value_); }

  /// Hands the resource over to the caller.
  [[nodiscard]] Type Detach() { return std::exchange(value_, Traits::kNull); }

  /// Releases the current resource and takes ownership of `value`.
  void Reset(Type value = Traits::kNull) {
    const Type old = std::exchange(value_, value);
    if (IsNull(old)) return;
    const DWORD last_error = GetLastError();
    Traits::Release(old);
    SetLastError(last_error);
  }

  /// Releases the current resource; returns the address for a function that stores a new one.
  [[nodiscard]] Type* Receive() {
    Reset();
    return &value_;
  }

 private:
  static bool IsNull(Type value) {
    if constexpr (requires { Traits::IsNull(value); }) {
      return Traits::IsNull(value);
    } else {
      return value == Traits::kNull;
    }
  }

  Type value_ = Traits::kNull;
};

}  // namespace quillo
