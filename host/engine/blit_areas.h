#pragma once

#include "base/ddi.h"

#include <algorithm>

#include "host/engine/drawing.h"

// Rectangles of blits: pixels of the page or of a picture.
namespace quillo::host {

/// The rectangle without mirroring.
inline RECTL Ordered(const RECTL& rect) {
  return {std::min(rect.left, rect.right), std::min(rect.top, rect.bottom),
          std::max(rect.left, rect.right), std::max(rect.top, rect.bottom)};
}

inline bool IsEmpty(const RECTL& rect) {
  return rect.left >= rect.right || rect.top >= rect.bottom;
}

/// Negative sides where the rectangle is mirrored.
inline SIZEL SizeOf(const RECTL& rect) { return {rect.right - rect.left, rect.bottom - rect.top}; }

inline double PixelCount(SIZEL size) { return static_cast<double>(size.cx) * size.cy; }

/// The rectangle of a whole picture.
inline RECTL WholeOf(const BitmapSource& picture) { return {0, 0, picture.width, picture.height}; }

/// Cuts an unstretched area to the pixels of a picture. `origin` is the picture's pixel at the
/// area's corner; both origins move with the corner.
void CropArea(RECTL& area, const BitmapSource& picture, POINTL& origin, POINTL& other_origin);

/// Cuts a stretch to the pixels of its source. False when nothing is left.
bool CropStretch(RECTL& target, RECTL& source_rect, const BitmapSource& source);

/// Calls `draw` for one band of the area after the other; a picture of a band has at most 32 MB.
template <typename Draw>
void InBands(const RECTL& area, Draw draw) {
  constexpr LONG kMaxPixels = (32 << 20) / 3;
  const LONG rows = std::max<LONG>(1, kMaxPixels / (area.right - area.left));
  for (RECTL band = area; band.top < area.bottom; band.top = band.bottom) {
    band.bottom = std::min(area.bottom, band.top + rows);
    draw(band);
  }
}

}  // namespace quillo::host
