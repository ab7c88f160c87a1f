#pragma once

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "base/bytes.h"

namespace quillo::fuzz {

/// Deals out the bytes of a fuzz input; zeros after its end.
class Input {
 public:
  explicit Input(Bytes bytes) : left_(bytes) {}

  /// Up to `size` bytes.
  Bytes TakeBytes(size_t size) {
    const Bytes taken = left_.first(std::min(size, left_.size()));
    left_ = left_.subspan(taken.size());
    return taken;
  }
  template <typename T>
  T Take() {
    return LoadOrZero<T>(TakeBytes(sizeof(T)));
  }
  [[nodiscard]] bool AtEnd() const { return left_.empty(); }

 private:
  Bytes left_;
};

/// What the platform's stand-ins answer comes from here.
inline Input platform{Bytes{}};

}  // namespace quillo::fuzz
