#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

namespace quillo {

/// Bytes. Larger memory would be missed elsewhere.
constexpr uint64_t kMaxSpareSize = 32 << 20;

/// Whether kept memory of a size serves where so much is wanted: it is large enough, and not
/// wasted.
constexpr bool ServesAsSpare(uint64_t kept, uint64_t wanted) {
  return kept >= wanted && kept / 2 <= wanted;
}

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
