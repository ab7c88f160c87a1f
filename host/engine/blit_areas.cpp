#include "host/engine/blit_areas.h"

#include <cmath>

namespace quillo::host {
namespace {

/// Cuts one axis of a stretch to the source's pixels, and the target in proportion.
void CropSpan(LONG& from, LONG& to, LONG count, LONG& target_from, LONG& target_to) {
  const double scale = static_cast<double>(target_to - target_from) / (to - from);
  const LONG lost_first = std::max<LONG>(0, -from), lost_last = std::max<LONG>(0, to - count);
  from += lost_first;
  to -= lost_last;
  target_from += static_cast<LONG>(std::lround(lost_first * scale));
  target_to -= static_cast<LONG>(std::lround(lost_last * scale));
}

}  // namespace

void CropArea(RECTL& area, const BitmapSource& picture, POINTL& origin, POINTL& other_origin) {
  const LONG left = std::max<LONG>(0, -origin.x), top = std::max<LONG>(0, -origin.y);
  area.right = std::min(area.right, area.left + (picture.width - origin.x));
  area.bottom = std::min(area.bottom, area.top + (picture.height - origin.y));
  area.left += left;
  area.top += top;
  for (POINTL* point : {&origin, &other_origin}) {
    point->x += left;
    point->y += top;
  }
}

bool CropStretch(RECTL& target, RECTL& source_rect, const BitmapSource& source) {
  if (IsEmpty(source_rect)) return false;
  CropSpan(source_rect.left, source_rect.right, source.width, target.left, target.right);
  CropSpan(source_rect.top, source_rect.bottom, source.height, target.top, target.bottom);
  return !IsEmpty(source_rect) && target.left != target.right && target.top != target.bottom;
}

}  // namespace quillo::host
