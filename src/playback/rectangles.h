#pragma once

#include <cstdint>

#include "base/arithmetic.h"
#include "capture/records/payloads.h"

// Sides of rectangles from outside, which may be empty, mirrored or absurd.
namespace quillo {

constexpr int32_t Width(const records::Rect& r) { return WrappingSubtract(r.right, r.left); }
constexpr int32_t Height(const records::Rect& r) { return WrappingSubtract(r.bottom, r.top); }

}  // namespace quillo
