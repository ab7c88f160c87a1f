#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

// Arithmetic on numbers from outside: checked, saturating, or modulo 2^32 where an absurd input may
// produce an absurd result.
namespace quillo {

/// The sum, or nothing when it does not fit T.
template <typename T>
constexpr std::optional<T> CheckedAdd(T a, T b) {
  T sum{};
  if (__builtin_add_overflow(a, b, &sum)) return std::nullopt;
  return sum;
}

/// The product, or nothing when it does not fit T.
template <typename T>
constexpr std::optional<T> CheckedMultiply(T a, T b) {
  T product{};
  if (__builtin_mul_overflow(a, b, &product)) return std::nullopt;
  return product;
}

/// Whether [offset, offset + size) lies inside a block of `total` bytes; never overflows.
constexpr bool RangeFits(size_t total, size_t offset, size_t size) {
  return offset <= total && size <= total - offset;
}

/// Truncates towards zero; values outside i32 yield the nearest limit, NaN yields 0.
constexpr int32_t TruncateToInt(float value) {
  if (!(value == value)) return 0;
  if (value >= 2147483648.0f) return INT32_MAX;
  if (value < -2147483648.0f) return INT32_MIN;
  return static_cast<int32_t>(value);
}

constexpr int32_t WrappingAdd(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

constexpr int32_t WrappingSubtract(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

constexpr int32_t WrappingMultiply(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}

}  // namespace quillo
