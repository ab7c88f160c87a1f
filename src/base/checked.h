#pragma once

#include <cstddef>
#include <optional>

namespace quillo {

/// Sum of outside numbers, or nothing when it does not fit T.
template <typename T>
constexpr std::optional<T> CheckedAdd(T a, T b) {
  T sum{};
  if (__builtin_add_overflow(a, b, &sum)) return std::nullopt;
  return sum;
}

/// Product of outside numbers, or nothing when it does not fit T.
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

}  // namespace quillo
