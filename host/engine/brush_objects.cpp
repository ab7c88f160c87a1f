#include "host/engine/brush_objects.h"

#include <array>
#include <cstddef>

namespace quillo::host {
namespace {

/// The lines of each hatch in an 8 by 8 cell, from the top, the leftmost pixel in the highest bit.
constexpr std::array<std::array<uint8_t, 8>, HS_DDI_MAX> kHatches{{
    {0x00, 0x00, 0x00, 0x00, 0xFF, 0x00, 0x00, 0x00},  // HS_HORIZONTAL
    {0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08},  // HS_VERTICAL
    {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01},  // HS_FDIAGONAL
    {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80},  // HS_BDIAGONAL
    {0x08, 0x08, 0x08, 0x08, 0xFF, 0x08, 0x08, 0x08},  // HS_CROSS
    {0x81, 0x42, 0x24, 0x18, 0x18, 0x24, 0x42, 0x81},  // HS_DIAGCROSS
}};

}  // namespace

BitmapSource HatchPicture(const BrushDescription& brush) {
  BitmapSource picture;
  picture.width = picture.height = 8;
  picture.bits_per_pixel = 1;
  picture.top_down = true;
  picture.palette = {SwapRedBlue(brush.background), SwapRedBlue(brush.colour)};
  picture.bits.resize(8 * picture.Stride());
  for (size_t y = 0; y < 8; ++y) {
    picture.bits[y * picture.Stride()] = std::byte{kHatches[brush.hatch][y]};
  }
  return picture;
}

BrushObjects::BrushObjects(const BrushDescription& brush, PFN_DrvRealizeBrush realise,
                           SURFOBJ& target) {
  const bool hatched = brush.kind == BrushDescription::Kind::kHatched && brush.hatch < HS_DDI_MAX;
  const bool patterned = brush.kind == BrushDescription::Kind::kPattern && brush.pattern != nullptr;
  if (!hatched && !patterned) {
    brush_.emplace(SwapRedBlue(brush.colour & 0xFFFFFF));
    return;
  }
  if (hatched) hatch_ = HatchPicture(brush);
  pattern_.emplace(hatched ? hatch_ : *brush.pattern);
  brush_.emplace(BrushObject::Pattern{.realise = realise,
                                      .target = &target,
                                      .pattern = pattern_->Source(),
                                      .mask = hatched ? pattern_->Source() : nullptr,
                                      .xlate = pattern_->Translation(),
                                      .hatch = hatched ? brush.hatch : HS_DDI_MAX});
}

}  // namespace quillo::host
