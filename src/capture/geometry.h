#pragma once

#include "base/ddi.h"

#include "capture/records/conversions.h"
#include "capture/records/payloads.h"

// The interface's points and rectangles as the records carry them.
namespace quillo {

inline records::Point ToPoint(const POINTL& point) { return {point.x, point.y}; }

/// (0, 0) without a point.
inline records::Point ToPoint(const POINTL* point) {
  return point != nullptr ? ToPoint(*point) : records::Point{};
}

inline records::Point ToPixels(const POINTFIX& point) {
  return {records::FixToPixel(point.x), records::FixToPixel(point.y)};
}

inline records::Rect ToRect(const RECTL& rect) {
  return {rect.left, rect.top, rect.right, rect.bottom};
}

/// Empty without a rectangle.
inline records::Rect ToRect(const RECTL* rect) {
  return rect != nullptr ? ToRect(*rect) : records::Rect{};
}

inline records::Rect ToPixels(const RECTFX& rect) {
  return {records::FixToPixel(rect.xLeft), records::FixToPixel(rect.yTop),
          records::FixToPixel(rect.xRight), records::FixToPixel(rect.yBottom)};
}

}  // namespace quillo
