#include "host/engine/stroke_objects.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quillo::host {

std::vector<float> CosmeticStyle(DWORD pen_style) {
  switch (pen_style & PS_STYLE_MASK) {
    case PS_DASH:
      return {6, 2};
    case PS_DOT:
      return {1, 1, 1, 1, 1, 1, 1, 1};
    case PS_DASHDOT:
      return {3, 2, 1, 2};
    case PS_DASHDOTDOT:
      return {3, 1, 1, 1, 1, 1};
    default:
      return {};
  }
}

ULONG JoinOf(DWORD pen_style) {
  switch (pen_style & PS_JOIN_MASK) {
    case PS_JOIN_BEVEL:
      return JOIN_BEVEL;
    case PS_JOIN_MITER:
      return JOIN_MITER;
    default:
      return JOIN_ROUND;
  }
}

ULONG EndCapOf(DWORD pen_style) {
  switch (pen_style & PS_ENDCAP_MASK) {
    case PS_ENDCAP_SQUARE:
      return ENDCAP_SQUARE;
    case PS_ENDCAP_FLAT:
      return ENDCAP_BUTT;
    default:
      return ENDCAP_ROUND;
  }
}

StrokeObjects::StrokeObjects(const PenDescription& pen)
    : transform_(pen.geometric ? pen.world_to_device : XFORM{1, 0, 0, 1, 0, 0}) {
  for (const float length : pen.style) {
    FLOAT_LONG entry{};
    if (pen.geometric) {
      entry.e = length;
    } else {
      entry.l = static_cast<LONG>(length);
    }
    style_.push_back(entry);
  }
  attributes_.iJoin = pen.join;
  attributes_.iEndCap = pen.end_cap;
  attributes_.eMiterLimit = pen.miter_limit;
  attributes_.cstyle = static_cast<ULONG>(style_.size());
  attributes_.pstyle = style_.empty() ? nullptr : style_.data();
  if (pen.geometric) {
    attributes_.fl = LA_GEOMETRIC;
    attributes_.elWidth.e = pen.width;
  } else {
    attributes_.fl = pen.alternate ? LA_ALTERNATE : 0;
    attributes_.elWidth.l = 1;
  }
}

double Reach(const PenDescription& pen) {
  if (!pen.geometric) return 1;
  const XFORM& m = pen.world_to_device;
  const double scale = std::max(std::hypot(m.eM11, m.eM12), std::hypot(m.eM21, m.eM22));
  double factor = std::numbers::sqrt2;
  if (pen.join == JOIN_MITER) factor = std::max(factor, double{pen.miter_limit});
  return std::abs(pen.width) / 2 * scale * factor + 1;
}

}  // namespace quillo::host
