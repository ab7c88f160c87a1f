#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quillo::imaging {

// Pixels as they lie in a row: below 8 bits and at 12 bits from the most significant bit of each
// byte on, above that in whole bytes.

/// Whether pixels of this depth share bytes. (8 bits take the same road, with a byte each.)
constexpr bool IsBitPacked(uint32_t bits) { return bits <= 8 || bits == 12; }

/// The `bits` (IsBitPacked) of pixel `x`.
inline uint32_t LoadPixelBits(const std::byte* row, uint32_t bits, uint32_t x) {
  const uint64_t first = uint64_t{x} * bits;
  const std::byte* at = row + first / 8;
  const auto used = static_cast<uint32_t>(first % 8);
  auto window = static_cast<uint32_t>(*at) << 8;
  if (used + bits > 8) window |= static_cast<uint32_t>(at[1]);
  return window >> (16 - used - bits) & ((1u << bits) - 1);
}

/// Replaces the `bits` (IsBitPacked) of pixel `x`.
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

/// Copies a whole pixel of any depth.
inline void CopyPixel(uint32_t bits, const std::byte* source, uint32_t from, std::byte* row,
                      uint32_t to) {
  if (IsBitPacked(bits)) {
    StorePixelBits(row, bits, to, LoadPixelBits(source, bits, from));
  } else {
    const size_t bytes = bits / 8;
    std::memcpy(row + to * bytes, source + from * bytes, bytes);
  }
}

}  // namespace quillo::imaging
