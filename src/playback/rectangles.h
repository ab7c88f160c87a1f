#pragma once

#include <cstdint>

#include "capture/records/payloads.h"

// Arithmetic on outside coordinates: rectangles may be empty, mirrored or absurd, so it wraps.
namespace quillo {

constexpr int32_t WrappedDifference(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

constexpr int32_t WrappedSum(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

constexpr int32_t Width(const records::Rect& r) { return WrappedDifference(r.right, r.left); }
constexpr int32_t Height(const records::Rect& r) { return WrappedDifference(r.bottom, r.top); }

}  // namespace quillo
