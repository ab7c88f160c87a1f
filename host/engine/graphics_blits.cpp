#include <algorithm>
#include <optional>

#include "host/engine/blit_areas.h"
#include "host/engine/brush_objects.h"
#include "host/engine/graphics.h"
#include "host/engine/picture_objects.h"
#include "host/engine/raster.h"
#include "host/engine/raster_operation.h"

// The blits. What the driver does not hook (operations while stretching, parallelograms, colour
// keys) is broken down into the hooks that it has, through pictures that the engine makes.
namespace quillo::host {

bool Graphics::MayMake(const char* name, double bytes) {
  if (budget_.Spend(bytes)) return true;
  ++calls_.unmade[name];
  return false;
}

RECTL Graphics::Visible(const RECTL& bounds, const ClipShape& clip) {
  const auto intersect = [](const RECTL& a, const RECTL& b) -> RECTL {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
  };
  const RECTL whole{0, 0, surface_.sizlBitmap.cx, surface_.sizlBitmap.cy};
  return intersect(intersect(bounds, whole), clip.Bounds());
}

void Graphics::RasterOperation(const RECTL& area, ROP4 rop4, const BrushDescription* brush,
                               const BitmapSource* source, POINTL source_origin,
                               const BitmapSource* mask, POINTL mask_origin,
                               const DrawState& state) {
  if (IsEmpty(area)) return;
  auto clip = ClipFor(area, state.clip);
  if (!clip) return;

  std::optional<PictureObjects> pixels, mask_pixels;
  std::optional<BrushObjects> paint;
  if (source != nullptr) pixels.emplace(*source);
  if (mask != nullptr) mask_pixels.emplace(*mask);
  if (brush != nullptr) paint.emplace(*brush, driver_.RealizeBrush, surface_);
  RECTL target = area;
  POINTL brush_origin = state.brush_origin;
  if (!Hook("DrvBitBlt", driver_.BitBlt, HOOK_BITBLT, &surface_,
            source != nullptr ? pixels->Source() : nullptr,
            mask != nullptr ? mask_pixels->Source() : nullptr, &*clip,
            source != nullptr ? pixels->Translation() : nullptr, &target, &source_origin,
            &mask_origin, brush != nullptr ? paint->Brush() : nullptr, &brush_origin, rop4)) {
    Refused("DrvBitBlt");
  }
  if (brush != nullptr) CountRealisations(paint->Realisations());
}

void Graphics::BitBlt(const RECTL& target, uint8_t rop3, const BrushDescription* brush,
                      const BitmapSource* source, POINTL source_origin, const DrawState& state) {
  RECTL area = Ordered(target);
  if (!UsesBrush(rop3)) brush = nullptr;
  if (!UsesSource(rop3)) source = nullptr;
  POINTL none{};
  if (source != nullptr) CropArea(area, *source, source_origin, none);
  if (source == nullptr || rop3 != kSourceCopy) {
    if (source != nullptr && !MayMake("DrvBitBlt", ExpandedBytes(*source))) return;
    std::optional<ReadablePicture> readable;
    if (source != nullptr) readable.emplace(*source);
    RasterOperation(area, SameOperation(rop3), brush, readable ? &**readable : nullptr,
                    source_origin, nullptr, {}, state);
    return;
  }

  if (IsEmpty(area)) return;
  auto clip = ClipFor(area, state.clip);
  if (!clip) return;
  PictureObjects picture(*source);
  if (!Hook("DrvCopyBits", driver_.CopyBits, HOOK_COPYBITS, &surface_, picture.Source(), &*clip,
            picture.Translation(), &area, &source_origin)) {
    Refused("DrvCopyBits");
  }
}

void Graphics::MaskBlt(const RECTL& target, uint16_t rop4, const BrushDescription* brush,
                       const BitmapSource& source, const RECTL& source_rect,
                       const BitmapSource& mask, POINTL mask_origin, const DrawState& state) {
  if (!MayMake("DrvBitBlt", ExpandedBytes(source))) return;
  const ReadablePicture readable(source);
  const SIZEL size = SizeOf(source_rect);
  if (SizeOf(target).cx == size.cx && SizeOf(target).cy == size.cy) {
    RECTL area = target;
    POINTL source_origin{source_rect.left, source_rect.top};
    CropArea(area, source, source_origin, mask_origin);
    CropArea(area, mask, mask_origin, source_origin);
    RasterOperation(area, rop4, brush, &*readable, source_origin, &mask, mask_origin, state);
    return;
  }
  if (IsEmpty(source_rect)) return;
  const RECTL area = Visible(Ordered(target), state.clip);
  if (IsEmpty(area)) return;
  if (!MayMake("DrvBitBlt",
               StretchedBytes(source, SizeOf(area)) + StretchedBytes(mask, SizeOf(area)))) {
    return;
  }
  const RECTL mask_rect{mask_origin.x, mask_origin.y, mask_origin.x + size.cx,
                        mask_origin.y + size.cy};
  InBands(area, [&](const RECTL& band) {
    const BitmapSource stretched = StretchPart(*readable, source_rect, target, band);
    const BitmapSource stretched_mask = StretchPart(mask, mask_rect, target, band);
    RasterOperation(band, rop4, brush, &stretched, {}, &stretched_mask, {}, state);
  });
}

void Graphics::StretchBlt(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                          uint8_t rop3, const BrushDescription* brush, ULONG stretch_mode,
                          const DrawState& state) {
  const SIZEL to_size = SizeOf(target), from_size = SizeOf(source_rect);
  if (!UsesSource(rop3) || (to_size.cx == from_size.cx && to_size.cy == from_size.cy)) {
    BitBlt(target, rop3, brush, &source, {source_rect.left, source_rect.top}, state);
    return;
  }
  RECTL to = target, from = source_rect;
  if (!CropStretch(to, from, source)) return;
  if (rop3 != kSourceCopy && !UsesBrush(rop3)) {
    Hold({source, from, to, rop3, state});
    return;
  }
  if (!MayMake("DrvStretchBlt", ExpandedBytes(source))) return;
  const ReadablePicture readable(source);
  if (rop3 != kSourceCopy) {
    const RECTL area = Visible(Ordered(to), state.clip);
    if (IsEmpty(area) || !MayMake("DrvBitBlt", StretchedBytes(source, SizeOf(area)))) return;
    CombineStretched(*readable, from, to, area, rop3, brush, state);
    return;
  }

  CopyStretched(to, *readable, from, stretch_mode, state);
}

void Graphics::CopyStretched(RECTL target, const BitmapSource& source, RECTL source_rect,
                             ULONG stretch_mode, const DrawState& state) {
  auto clip = ClipFor(Ordered(target), state.clip);
  if (!clip) return;
  PictureObjects picture(source);
  POINTL halftone_origin = state.brush_origin;
  if (!Hook("DrvStretchBlt", driver_.StretchBlt, HOOK_STRETCHBLT, &surface_, picture.Source(),
            nullptr, &*clip, picture.Translation(), nullptr, &halftone_origin, &target,
            &source_rect, nullptr, stretch_mode)) {
    Refused("DrvStretchBlt");
  }
}

void Graphics::DrawPicture(const RECTL& target, const BitmapSource& picture) {
  if (picture.bits_per_pixel <= 8) {
    CopyStretched(target, picture, WholeOf(picture), COLORONCOLOR, DrawState());
  } else {
    StretchBlt(target, picture, WholeOf(picture), kSourceCopy, nullptr, COLORONCOLOR, DrawState());
  }
}

}  // namespace quillo::host
