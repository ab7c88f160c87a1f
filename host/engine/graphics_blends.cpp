#include "host/engine/blit_areas.h"
#include "host/engine/graphics.h"
#include "host/engine/picture_objects.h"
#include "host/engine/raster.h"

// Blits with transparency.
namespace quillo::host {

void Graphics::AlphaBlend(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                          BLENDFUNCTION blend, const DrawState& state) {
  RECTL to = target, from = source_rect;
  if (!CropStretch(to, from, source)) return;
  auto clip = ClipFor(Ordered(to), state.clip);
  if (!clip) return;

  // A blend cannot mirror, so the picture is.
  const bool mirrored = to.right < to.left || to.bottom < to.top;
  const double turned_bytes = mirrored ? PixelCount(SizeOf(from)) * kArgbBytes : 0;
  if (!MayMake("DrvAlphaBlend", ExpandedBytes(source) + turned_bytes)) return;
  const ReadablePicture readable(source);
  BitmapSource turned;
  if (mirrored) {
    turned = CopyArgb(*readable, from, to.right < to.left, to.bottom < to.top, {});
    from = {0, 0, turned.width, turned.height};
    to = Ordered(to);
  }
  PictureObjects picture(mirrored ? turned : *readable);
  BLENDOBJ blend_object{blend};
  if (!Hook("DrvAlphaBlend", driver_.AlphaBlend, HOOK_ALPHABLEND, &surface_, picture.Source(),
            &*clip, picture.Translation(), &to, &from, &blend_object)) {
    Refused("DrvAlphaBlend");
  }
}

void Graphics::LayOver(const RECTL& area, const BitmapSource& picture, const DrawState& state) {
  AlphaBlend(area, picture, WholeOf(picture), {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA}, state);
}

void Graphics::TransparentBlt(const RECTL& target, const BitmapSource& source,
                              const RECTL& source_rect, uint32_t key, const DrawState& state) {
  RECTL to = target, from = source_rect;
  if (!CropStretch(to, from, source)) return;
  if (!MayMake("DrvAlphaBlend", ExpandedBytes(source) + PixelCount(SizeOf(from)) * kArgbBytes)) {
    return;
  }
  const ReadablePicture readable(source);
  const BitmapSource keyed =
      CopyArgb(*readable, from, to.right < to.left, to.bottom < to.top, key & ~kOpaque);
  LayOver(Ordered(to), keyed, state);
}

}  // namespace quillo::host
