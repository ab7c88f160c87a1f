#pragma once

#include <cstdint>

namespace quillo::host::emf {

// As records hold them.
struct PointL {
  int32_t x = 0;
  int32_t y = 0;
  bool operator==(const PointL&) const = default;
};

struct PointS {
  int16_t x = 0;
  int16_t y = 0;
};

using SizeL = PointL;

struct RectL {
  int32_t left = 0;
  int32_t top = 0;
  int32_t right = 0;
  int32_t bottom = 0;
  bool operator==(const RectL&) const = default;
};

/// A point between device pixels.
struct PointD {
  double x = 0;
  double y = 0;
  bool operator==(const PointD&) const = default;
};

}  // namespace quillo::host::emf
