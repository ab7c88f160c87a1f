#include <algorithm>

#include "host/engine/brush_objects.h"
#include "host/engine/graphics.h"
#include "host/engine/picture_objects.h"

namespace quillo::host {
namespace {

constexpr uint8_t kSourceCopy = 0xCC;

/// Whether the result of a ternary operation depends on its source or its brush.
constexpr bool UsesSource(uint8_t rop3) { return ((rop3 >> 2 ^ rop3) & 0x33) != 0; }
constexpr bool UsesBrush(uint8_t rop3) { return ((rop3 >> 4 ^ rop3) & 0x0F) != 0; }

RECTL Ordered(const RECTL& rect) {
  return {std::min(rect.left, rect.right), std::min(rect.top, rect.bottom),
          std::max(rect.left, rect.right), std::max(rect.top, rect.bottom)};
}

}  // namespace

void Graphics::BitBlt(const RECTL& target, uint8_t rop3, const BrushDescription* brush,
                      const BitmapSource* source, POINTL source_origin, const DrawState& state) {
  const bool with_source = source != nullptr && UsesSource(rop3);
  const bool with_brush = brush != nullptr && UsesBrush(rop3);
  RECTL area = target;
  if (with_source) {
    // Nothing is drawn where the source has no pixels.
    area.left += std::max<LONG>(0, -source_origin.x);
    area.top += std::max<LONG>(0, -source_origin.y);
    area.right = std::min(area.right, target.left + (source->width - source_origin.x));
    area.bottom = std::min(area.bottom, target.top + (source->height - source_origin.y));
    source_origin.x += area.left - target.left;
    source_origin.y += area.top - target.top;
  }
  if (area.left >= area.right || area.top >= area.bottom) return;
  auto clip = ClipFor(area, state.clip);
  if (!clip) return;

  std::optional<PictureObjects> picture;
  if (with_source) picture.emplace(*source);
  SURFOBJ* pixels = with_source ? picture->Source() : nullptr;
  XLATEOBJ* translation = with_source ? picture->Translation() : nullptr;
  if (with_source && rop3 == kSourceCopy) {
    if (!Hook("DrvCopyBits", driver_.CopyBits, HOOK_COPYBITS, &surface_, pixels, &*clip,
              translation, &area, &source_origin)) {
      Refused("DrvCopyBits");
    }
    return;
  }
  std::optional<BrushObjects> paint;
  if (with_brush) paint.emplace(*brush, driver_.RealizeBrush, surface_);
  POINTL brush_origin = state.brush_origin;
  const ROP4 rop4 = static_cast<ROP4>(rop3 << 8 | rop3);
  if (!Hook("DrvBitBlt", driver_.BitBlt, HOOK_BITBLT, &surface_, pixels, nullptr, &*clip,
            translation, &area, &source_origin, nullptr, with_brush ? paint->Brush() : nullptr,
            &brush_origin, rop4)) {
    Refused("DrvBitBlt");
  }
  if (with_brush) CountRealizations(paint->Realizations());
}

void Graphics::StretchBlt(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                          uint8_t rop3, const BrushDescription* brush, ULONG stretch_mode,
                          const DrawState& state) {
  const LONG width = source_rect.right - source_rect.left;
  const LONG height = source_rect.bottom - source_rect.top;
  if (target.right - target.left == width && target.bottom - target.top == height) {
    BitBlt(target, rop3, brush, &source, {source_rect.left, source_rect.top}, state);
    return;
  }
  if (target.left == target.right || target.top == target.bottom || width <= 0 || height <= 0) {
    return;
  }
  auto clip = ClipFor(Ordered(target), state.clip);
  if (!clip) return;

  PictureObjects picture(source);
  RECTL to = target, from = source_rect;
  POINTL halftone_origin = state.brush_origin;
  if (!Hook("DrvStretchBlt", driver_.StretchBlt, HOOK_STRETCHBLT, &surface_, picture.Source(),
            nullptr, &*clip, picture.Translation(), nullptr, &halftone_origin, &to, &from, nullptr,
            stretch_mode)) {
    Refused("DrvStretchBlt");
  }
}

}  // namespace quillo::host
