#pragma once

#include <cstddef>
#include <cstdint>

namespace quillo::imaging {

// Pixels as they lie in a row: below 8 bits and at 12 bits from the most significant bit of each
// byte on, above that in whole bytes.

/// The `bits` (1 to 8, 12) of pixel `x`.
inline uint32_t LoadPixelBits(const std::byte* row, uint32_t bits, uint32_t x) {
  const uint64_t first = uint64_t{x} * bits;
  const std::byte* at = row + first / 8;
  const auto used = static_cast<uint32_t>(first % 8);
  auto window = static_cast<uint32_t>(*at) << 8;
  if (used + bits > 8) window |= static_cast<uint32_t>(at[1]);
  return window >> (16 - used - bits) & ((1u << bits) - 1);
}

/// Replaces the `bits` (1 to 8, 12) of pixel `x`.
inline void StorePixelBits(std::byte* row, uint32_t bits, uint32_t x, uint32_t value) {
  const uint64_t first = uint64_t{x} * bits;
  std::byte* at = row + first / 8;
  const uint32_t down = 16 - static_cast<uint32_t>(first % 8) - bits;
  const uint32_t mask = ((1u << bits) - 1) << down;
  const uint32_t placed = value << down;
  at[0] = (at[0] & ~static_cast<std::byte>(mask >> 8)) | static_cast<std::byte>(placed >> 8);
  if ((mask & 0xFF) != 0) {
    at[1] = (at[1] & ~static_cast<std::byte>(mask)) | static_cast<std::byte>(placed & 0xFF);
  }
}

}  // namespace quillo::imaging
