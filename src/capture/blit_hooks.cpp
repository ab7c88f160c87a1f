#include "base/ddi.h"

#include <bit>
#include <cstring>

#include "capture/blit_builders.h"
#include "capture/builders.h"
#include "capture/clip.h"
#include "capture/drawing_call.h"
#include "capture/fill.h"
#include "capture/geometry.h"
#include "capture/hooks.h"
#include "capture/records/ternary_rop.h"

namespace quillo {
namespace {

using namespace records;

constexpr ULONG kWhite = 0xFFFFFFFF;

/// The mode of REC_SETROP2 that DrvPaint records for a mix: its low byte.
///
/// Compatibility: R2_WHITE stays 16 here while PathRop2 makes it 0; existing streams have both.
constexpr uint32_t PaintRop2(MIX mix) { return mix & 0xFF; }

void WriteTargetClip(DEVICE_PDEV& device, CLIPOBJ* clip, const RECTL* target_rect) {
  const Rect bounds = ToRect(target_rect);
  WriteClip(device, clip, target_rect != nullptr ? &bounds : nullptr);
}

}  // namespace

BOOL APIENTRY DrvBitBlt(SURFOBJ* target, SURFOBJ* source, SURFOBJ* mask, CLIPOBJ* clip,
                        XLATEOBJ* translation, RECTL* target_rect, POINTL* source_origin,
                        POINTL* mask_origin, BRUSHOBJ* brush, POINTL* brush_origin,
                        ROP4 rop4) noexcept {
  return CaptureDrawing(FindDevice(target), [&](DEVICE_PDEV& device) {
    if (brush != nullptr) WriteFillBrush(device, brush, brush_origin);
    WriteTargetClip(device, clip, target_rect);
    const Rect destination = ToRect(target_rect);
    if (source == nullptr) {
      EmitPayload(device, REC_PATBLT, PatBltPayload{destination, TernaryRop(rop4)});
    } else if (mask == nullptr) {
      EmitBitBlt(device, {destination, ToPoint(source_origin), TernaryRop(rop4), 0},
                 {source, translation});
    } else {
      EmitMaskBlt(device, {destination, ToPoint(source_origin), ToPoint(mask_origin), rop4, 0, 0},
                  {source, translation}, {mask, /*translation=*/nullptr});
    }
    return TRUE;
  });
}

BOOL APIENTRY DrvPaint(SURFOBJ* surface, CLIPOBJ* clip, BRUSHOBJ* brush, POINTL* brush_origin,
                       MIX mix) noexcept {
  return CaptureDrawing(FindDevice(surface), [&](DEVICE_PDEV& device) {
    WriteFillBrush(device, brush, brush_origin);
    EmitSetRop2(device, PaintRop2(mix));
    WriteClip(device, clip, nullptr);
    // Without a clip object the whole surface is painted.
    const SIZEL size = surface->sizlBitmap;
    EmitFillRect(device, clip != nullptr ? ToRect(clip->rclBounds) : Rect{0, 0, size.cx, size.cy});
    return TRUE;
  });
}

BOOL APIENTRY DrvStretchBlt(SURFOBJ* target, SURFOBJ* source, SURFOBJ* mask, CLIPOBJ* clip,
                            XLATEOBJ* translation, COLORADJUSTMENT* adjustment, POINTL*,
                            RECTL* target_rect, RECTL* source_rect, POINTL*, ULONG mode) noexcept {
  return CaptureDrawing(FindDevice(target), [&](DEVICE_PDEV& device) {
    WriteTargetClip(device, clip, target_rect);
    // Compatibility: a stretch with a mask is not recorded, as in existing streams.
    if (source == nullptr || mask != nullptr) return TRUE;
    StretchBltPayload blit = {ToRect(target_rect), ToRect(source_rect), 0, {}, mode, 0};
    if (adjustment != nullptr) {
      static_assert(sizeof *adjustment == sizeof blit.adjustment);
      blit.has_adjustment = 1;
      std::memcpy(blit.adjustment, adjustment, sizeof blit.adjustment);
    }
    EmitStretchBlt(device, blit, {source, translation});
    return TRUE;
  });
}

BOOL APIENTRY DrvCopyBits(SURFOBJ* target, SURFOBJ* source, CLIPOBJ* clip, XLATEOBJ* translation,
                          RECTL* target_rect, POINTL* source_origin) noexcept {
  // The device surface holds no pixels: a copy of it is white.
  if (source != nullptr && source->iType != STYPE_BITMAP) {
    return EngEraseSurface(target, target_rect, kWhite);
  }
  return CaptureDrawing(FindDevice(target), [&](DEVICE_PDEV& device) {
    WriteTargetClip(device, clip, target_rect);
    EmitSetDibitsToDevice(device, {ToRect(target_rect), ToPoint(source_origin), 0},
                          {source, translation});
    return TRUE;
  });
}

BOOL APIENTRY DrvAlphaBlend(SURFOBJ* target, SURFOBJ* source, CLIPOBJ* clip, XLATEOBJ* translation,
                            RECTL* target_rect, RECTL* source_rect, BLENDOBJ* blend) noexcept {
  return CaptureDrawing(FindDevice(target), [&](DEVICE_PDEV& device) {
    WriteTargetClip(device, clip, target_rect);
    if (blend == nullptr) return TRUE;
    EmitAlphaBlend(device,
                   {ToRect(target_rect), ToRect(source_rect),
                    std::bit_cast<uint32_t>(blend->BlendFunction), 0},
                   {source, translation});
    return TRUE;
  });
}

}  // namespace quillo
