#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>

// Every target of this code is little-endian, as are its formats; the functions below only take
// care of alignment and bounds.
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);

namespace quillo {

using Bytes = std::span<const std::byte>;
using MutableBytes = std::span<std::byte>;

/// Reads a T at `offset`; bytes beyond the end of `bytes` read as zero.
template <typename T>
T LoadOrZero(Bytes bytes, size_t offset = 0) {
  static_assert(std::is_trivially_copyable_v<T>);
  T value{};
  if (offset < bytes.size()) {
    const size_t left = bytes.size() - offset;
    std::memcpy(&value, bytes.data() + offset, left < sizeof(T) ? left : sizeof(T));
  }
  return value;
}

/// Writes a T at `offset`, where it must fit.
template <typename T>
void Store(MutableBytes bytes, size_t offset, const T& value) {
  static_assert(std::is_trivially_copyable_v<T>);
  std::memcpy(bytes.data() + offset, &value, sizeof(T));
}

constexpr uint16_t SwapBytes(uint16_t value) {
  return static_cast<uint16_t>((value >> 8) | (value << 8));
}

constexpr uint32_t SwapBytes(uint32_t value) { return __builtin_bswap32(value); }

}  // namespace quillo
