#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "host/emf_player/emf_player.h"

// The DC's pen and brush as the canvas takes them.
namespace quillo::host::emf {

namespace {

constexpr size_t kMaxDashes = 16;  // of ExtCreatePen

// A thinner line, in pixels, is drawn like a cosmetic one.
constexpr double kThin = 1.5;
// Pixels. It covers every sheet; a wider one costs time for rows that nobody sees.
constexpr double kWidest = 1 << 17;

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
  const size_t count = std::min(pen.dashes.size(), kMaxDashes);
  return {pen.dashes.begin(), pen.dashes.begin() + static_cast<ptrdiff_t>(count)};
}

}  // namespace

COLORREF EmfPlayer::Resolve(COLORREF colour) const {
  constexpr COLORREF kPaletteIndex = 0x01000000;
  if ((colour & 0xFF000000) == kPaletteIndex) {
    const std::vector<uint32_t>& colours = state_.palette->colours;
    const size_t index = colour & 0xFFFF;
    if (index < colours.size()) {
      const uint32_t entry = colours[index];
      return RGB(entry >> 16 & 0xFF, entry >> 8 & 0xFF, entry & 0xFF);
    }
    return RGB(0, 0, 0);
  }
  return colour & 0x00FFFFFF;
}

bool EmfPlayer::DescribeBrush(const BrushObject& object, BrushDescription& brush) {
  brush = BrushDescription::Solid(Resolve(object.colour));
  brush.background = Resolve(state_.background_colour);
  switch (object.kind) {
    case BrushObject::Kind::kNull:
      return false;
    case BrushObject::Kind::kSolid:
      return true;
    case BrushObject::Kind::kHatched:
      brush.kind = BrushDescription::Kind::kHatched;
      brush.hatch = object.hatch;
      return true;
    case BrushObject::Kind::kPattern:
      brush.kind = BrushDescription::Kind::kPattern;
      brush.pattern = object.pattern;
      Spend(static_cast<double>(object.pattern->bits.size()) / kBytesPerPoint);
      return true;
    case BrushObject::Kind::kMonoPattern:
      brush.kind = BrushDescription::Kind::kPattern;
      brush.pattern = InTextColours(object.pattern);
      return true;
  }
  return false;
}

/// `bitmap`, of one bit a pixel, in the current text and background colours.
Shared<BitmapSource> EmfPlayer::InTextColours(const Shared<BitmapSource>& bitmap) {
  const std::vector<uint32_t> colours = {ToRgb(Resolve(state_.text_colour)),
                                         ToRgb(Resolve(state_.background_colour))};
  if (mono_original_ != bitmap || mono_coloured_->palette != colours) {
    auto coloured = std::make_shared<BitmapSource>(*bitmap);
    coloured->palette = colours;
    mono_original_ = bitmap;
    mono_coloured_ = std::move(coloured);
  }
  return mono_coloured_;
}

bool EmfPlayer::DescribePen(PenDescription& pen) {
  const PenObject& object = *state_.pen;
  const uint32_t line_style = object.LineStyle();
  if (line_style == PS_NULL || !DescribeBrush(object.brush, pen.brush)) return false;
  pen.miter_limit = state_.miter_limit;

  const double scale = to_page_.Scale();
  pen.geometric =
      object.simple ? object.width * scale >= kThin : (object.style & PS_TYPE_MASK) == PS_GEOMETRIC;
  if (pen.geometric) {
    // The pen is scaled by the transform's mean factor: pens of a page are round.
    pen.world_to_device.eM11 = pen.world_to_device.eM22 = static_cast<float>(scale);
    pen.width = static_cast<float>(std::clamp<double>(object.width, 1 / scale, kWidest / scale));
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
