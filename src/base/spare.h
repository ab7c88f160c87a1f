#pragma once

#include <atomic>
#include <utility>

namespace quillo {

/// Something that is kept from its last user for the next one, on whatever thread that is.
template <typename T>
class Spare {
 public:
  /// Keeps `next` and returns what was kept; returns `next` while another thread is at it.
  T Exchange(T next) {
    if (busy_.test_and_set(std::memory_order_acquire)) return next;
    std::swap(kept_, next);
    busy_.clear(std::memory_order_release);
    return next;
  }

 private:
  std::atomic_flag busy_;
  T kept_{};
};

}  // namespace quillo
