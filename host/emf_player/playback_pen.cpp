#include <algorithm>
#include <cmath>

#include "host/emf_player/playback.h"

namespace quillo::host::emf {

namespace {

constexpr size_t kMostDashes = 16;  // as many as ExtCreatePen takes

// A line below this width, in pixels, has the width of a cosmetic one.
constexpr double kThin = 1.5;

ULONG JoinOf(uint32_t style) {
  switch (style & PS_JOIN_MASK) {
    case PS_JOIN_BEVEL:
      return JOIN_BEVEL;
    case PS_JOIN_MITER:
      return JOIN_MITER;
    default:
      return JOIN_ROUND;
  }
}

ULONG EndCapOf(uint32_t style) {
  switch (style & PS_ENDCAP_MASK) {
    case PS_ENDCAP_SQUARE:
      return ENDCAP_SQUARE;
    case PS_ENDCAP_FLAT:
      return ENDCAP_BUTT;
    default:
      return ENDCAP_ROUND;
  }
}

/// Dashes and gaps of a geometric pen in multiples of its width.
std::vector<float> DashesInWidths(uint32_t line_style) {
  switch (line_style) {
    case PS_DASH:
      return {3, 1};
    case PS_DOT:
      return {1, 1};
    case PS_DASHDOT:
      return {3, 1, 1, 1};
    case PS_DASHDOTDOT:
      return {3, 1, 1, 1, 1, 1};
    default:
      return {};
  }
}

std::vector<float> UserDashes(const PenObject& pen) {
  const size_t count = std::min(pen.dashes.size(), kMostDashes);
  return {pen.dashes.begin(), pen.dashes.begin() + static_cast<ptrdiff_t>(count)};
}

}  // namespace

bool Playback::DescribePen(PenDescription& pen) {
  const PenObject& object = *state_.pen;
  const uint32_t line_style = object.LineStyle();
  if (line_style == PS_NULL || !DescribeBrush(object.brush, pen.brush)) return false;
  pen.miter_limit = state_.miter_limit;

  const double scale = to_page_.Scale();
  pen.geometric =
      object.simple ? object.width * scale >= kThin : (object.style & PS_TYPE_MASK) == PS_GEOMETRIC;
  if (pen.geometric) {
    // The pen's shape follows the transform's mean enlargement: a page's pens are round.
    pen.world_to_device.eM11 = pen.world_to_device.eM22 = static_cast<float>(scale);
    pen.width = static_cast<float>(std::max<double>(object.width, 1 / scale));
    pen.join = JoinOf(object.style);
    pen.end_cap = EndCapOf(object.style);
    pen.style = line_style == PS_USERSTYLE ? UserDashes(object) : DashesInWidths(line_style);
    if (line_style != PS_USERSTYLE) {
      for (float& length : pen.style) length *= pen.width;
    }
    const auto shows = [scale](float length) { return length * scale >= 1; };
    if (std::none_of(pen.style.begin(), pen.style.end(), shows)) pen.style.clear();
  } else {
    pen.brush.kind = BrushDescription::Kind::kSolid;
    pen.alternate = line_style == PS_ALTERNATE;
    pen.style = line_style == PS_USERSTYLE ? UserDashes(object) : CosmeticStyle(line_style);
    const auto shows = [](float length) { return length >= 1; };
    if (std::none_of(pen.style.begin(), pen.style.end(), shows)) pen.style.clear();
  }
  return true;
}

}  // namespace quillo::host::emf
