#include <algorithm>
#include <cmath>
#include <deque>
#include <utility>

#include "host/engine/brush_objects.h"
#include "host/engine/graphics.h"
#include "host/engine/picture_objects.h"
#include "host/engine/raster.h"
#include "host/engine/raster_operation.h"
#include "host/engine/raster_steps.h"

// The blits. What the driver does not hook (operations while stretching, parallelograms, colour
// keys) is broken down into the hooks that it has, by way of pictures that the engine makes.
namespace quillo::host {
namespace {

/// What calls of one page may be broken down into: the pixels of its sheet, and some more. Without
/// a bound, small files could ask for pages of gigabytes.
constexpr double kMostMadeSheets = 1.5;
constexpr double kLeastMadeLimit = 128 << 20;  // bytes, whatever the sheet

constexpr ROP4 SameOperation(uint8_t rop3) { return static_cast<ROP4>(rop3 << 8 | rop3); }

RECTL Ordered(const RECTL& rect) {
  return {std::min(rect.left, rect.right), std::min(rect.top, rect.bottom),
          std::max(rect.left, rect.right), std::max(rect.top, rect.bottom)};
}

bool IsEmpty(const RECTL& rect) { return rect.left >= rect.right || rect.top >= rect.bottom; }

double PixelCount(SIZEL size) { return static_cast<double>(size.cx) * size.cy; }

/// What a run-length picture takes when it is expanded.
double ExpandedBytes(const BitmapSource& picture) {
  if (!picture.run_length) return 0;
  return static_cast<double>(picture.Stride()) * picture.height;
}

/// What StretchPart makes of a picture; a pixel of it takes the work of a byte at least.
double StretchedBytes(const BitmapSource& source, SIZEL size) {
  return PixelCount(size) * std::clamp<int>(source.bits_per_pixel, 8, 24) / 8;
}

/// Calls `draw` with the area in bands, so that no picture of one takes more than 32 MB.
template <typename Draw>
void InBands(const RECTL& area, Draw draw) {
  constexpr LONG kMostPixels = (32 << 20) / 3;
  const LONG rows = std::max<LONG>(1, kMostPixels / (area.right - area.left));
  for (RECTL band = area; band.top < area.bottom; band.top = band.bottom) {
    band.bottom = std::min(area.bottom, band.top + rows);
    draw(band);
  }
}

SIZEL SizeOf(const RECTL& rect) { return {rect.right - rect.left, rect.bottom - rect.top}; }

/// Cuts an unstretched area to where the picture, which starts at `origin` for the area's corner,
/// has pixels; moves the corner and all given origins along.
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

/// Cuts one axis of a stretch to the source's pixels, and the target by as much.
void CropSpan(LONG& from, LONG& to, LONG count, LONG& target_from, LONG& target_to) {
  const double scale = static_cast<double>(target_to - target_from) / (to - from);
  const LONG lost_first = std::max<LONG>(0, -from), lost_last = std::max<LONG>(0, to - count);
  from += lost_first;
  to -= lost_last;
  target_from += static_cast<LONG>(std::lround(lost_first * scale));
  target_to -= static_cast<LONG>(std::lround(lost_last * scale));
}

/// False when nothing is left to stretch.
bool CropStretch(RECTL& target, RECTL& source_rect, const BitmapSource& source) {
  if (IsEmpty(source_rect)) return false;
  CropSpan(source_rect.left, source_rect.right, source.width, target.left, target.right);
  CropSpan(source_rect.top, source_rect.bottom, source.height, target.top, target.bottom);
  return !IsEmpty(source_rect) && target.left != target.right && target.top != target.bottom;
}

}  // namespace

bool Graphics::CanMake(double bytes) const {
  const double sheet_bytes = 3 * PixelCount(Size());
  return made_bytes_ + bytes <= std::max(kMostMadeSheets * sheet_bytes, kLeastMadeLimit);
}

bool Graphics::MayMake(const char* name, double bytes) {
  if (!CanMake(bytes)) {
    ++calls_.unmade[name];
    return false;
  }
  made_bytes_ += bytes;
  return true;
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
  if (brush != nullptr) CountRealizations(paint->Realizations());
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
  const RECTL whole{0, 0, picture.width, picture.height};
  if (picture.bits_per_pixel <= 8) {
    CopyStretched(target, picture, whole, COLORONCOLOR, DrawState());
  } else {
    StretchBlt(target, picture, whole, kSourceCopy, nullptr, COLORONCOLOR, DrawState());
  }
}

bool Graphics::HeldStretch::SamePlace(const HeldStretch& other) const {
  const SIZEL size = SizeOf(source_rect), other_size = SizeOf(other.source_rect);
  return target.left == other.target.left && target.top == other.target.top &&
         target.right == other.target.right && target.bottom == other.target.bottom &&
         size.cx == other_size.cx && size.cy == other_size.cy &&
         (state.clip.SameAs(other.state.clip) ||
          EqualRgn(state.clip.Handle(), other.state.clip.Handle()));
}

void Graphics::Hold(HeldStretch stretch) {
  constexpr size_t kMost = 3;  // a picture may come before its mask and once more after it
  if (held_.size() == kMost || (!held_.empty() && !held_.back().SamePlace(stretch))) Finish();
  held_.push_back(std::move(stretch));
}

void Graphics::Finish() {
  if (held_.empty()) return;
  const std::vector<HeldStretch> held = std::exchange(held_, {});
  const auto& [source, source_rect, target, rop3, state] = held.front();
  const RECTL area = Visible(Ordered(target), state.clip);
  if (IsEmpty(area)) return;

  const SIZEL size = SizeOf(source_rect);
  double expanded = 0, stretched = 0;
  for (const HeldStretch& step : held) {
    expanded += ExpandedBytes(step.source);
    stretched += StretchedBytes(step.source, SizeOf(area));
  }
  const double joined_bytes = PixelCount(size) * kArgbBytes;
  const bool join = held.size() > 1 && CanMake(expanded + joined_bytes);
  // All or nothing: a mask without its picture would be a hole.
  if (!MayMake("DrvBitBlt", expanded + (join ? joined_bytes : stretched))) return;
  std::deque<ReadablePicture> pictures;
  std::vector<RasterStep> steps;
  steps.reserve(held.size());
  for (const HeldStretch& step : held) {
    steps.push_back({&*pictures.emplace_back(step.source),
                     {step.source_rect.left, step.source_rect.top},
                     step.rop3});
  }
  if (join) {
    if (const auto joined = JoinSteps(steps, size)) return LayOver(target, *joined, state);
    if (!MayMake("DrvBitBlt", stretched)) return;
  }
  for (size_t i = 0; i < held.size(); ++i) {
    CombineStretched(*steps[i].picture, held[i].source_rect, target, area, held[i].rop3, nullptr,
                     state);
  }
}

void Graphics::CombineStretched(const BitmapSource& source, const RECTL& source_rect,
                                const RECTL& target, const RECTL& area, uint8_t rop3,
                                const BrushDescription* brush, const DrawState& state) {
  InBands(area, [&](const RECTL& band) {
    const BitmapSource stretched = StretchPart(source, source_rect, target, band);
    RasterOperation(band, SameOperation(rop3), brush, &stretched, {}, nullptr, {}, state);
  });
}

void Graphics::AlphaBlend(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                          BLENDFUNCTION blend, const DrawState& state) {
  RECTL to = target, from = source_rect;
  if (!CropStretch(to, from, source)) return;
  auto clip = ClipFor(Ordered(to), state.clip);
  if (!clip) return;

  // A blend cannot mirror: the picture is turned before.
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
  AlphaBlend(area, picture, {0, 0, picture.width, picture.height},
             {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA}, state);
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

void Graphics::PlgBlt(const std::array<POINTFIX, 3>& target, const BitmapSource& source,
                      const RECTL& source_rect, const BitmapSource* mask, POINTL mask_origin,
                      ULONG stretch_mode, const DrawState& state) {
  const auto [a, b, c] = target;
  const auto round = [](FIX value) { return static_cast<LONG>(FXTOLROUND(value)); };
  if (mask == nullptr && a.y == b.y && a.x == c.x) {  // upright
    StretchBlt({round(a.x), round(a.y), round(b.x), round(c.y)}, source, source_rect, kSourceCopy,
               nullptr, stretch_mode, state);
    return;
  }
  if (IsEmpty(source_rect) || !MayMake("DrvStretchBlt", ExpandedBytes(source))) return;
  const ReadablePicture readable(source);
  if (mask == nullptr && a.x == b.x && a.y == c.y) {  // by a quarter turn
    if (!MayMake("DrvStretchBlt", PixelCount(SizeOf(source_rect)) * kArgbBytes)) return;
    const BitmapSource turned = Transpose(*readable, source_rect);
    StretchBlt({round(a.x), round(a.y), round(c.x), round(b.y)}, turned,
               {0, 0, turned.width, turned.height}, kSourceCopy, nullptr, stretch_mode, state);
    return;
  }

  Slant({{{a.x / 16.0, a.y / 16.0}, {b.x / 16.0, b.y / 16.0}, {c.x / 16.0, c.y / 16.0}}}, *readable,
        source_rect, mask, mask_origin, stretch_mode, state);
}

/// Draws the bounding rectangle of the parallelogram with its outline as clip. The picture of it
/// has pixels enough to show those of the source, and no more than the page.
void Graphics::Slant(const std::array<PointD, 3>& corners, const BitmapSource& source,
                     const RECTL& rect, const BitmapSource* mask, POINTL mask_origin,
                     ULONG stretch_mode, const DrawState& state) {
  const auto& [a, b, c] = corners;
  const double ux = b.x - a.x, uy = b.y - a.y, vx = c.x - a.x, vy = c.y - a.y;
  const double determinant = ux * vy - uy * vx;
  if (determinant == 0) return;
  Path outline;
  outline.MoveTo(a.x, a.y);
  outline.LineTo(b.x, b.y);
  outline.LineTo(b.x + vx, b.y + vy);
  outline.LineTo(c.x, c.y);
  outline.CloseFigure();
  DrawState inside = state;
  inside.clip = state.clip.Combined(ClipShape::OfPath(outline, FillMode::kAlternate), RGN_AND);
  const RECTL area = Visible(inside.clip.Bounds(), inside.clip);
  if (IsEmpty(area)) return;

  constexpr double kLeastPixels = 1 << 20;
  const SIZEL size = SizeOf(rect), full = SizeOf(area);
  const double wanted = std::max(4.0 * size.cx * size.cy, kLeastPixels);
  const double scale = std::min(1.0, std::sqrt(wanted / (static_cast<double>(full.cx) * full.cy)));
  const auto scaled = [&](LONG length) {
    return std::max<LONG>(1, static_cast<LONG>(std::lround(length * scale)));
  };
  const SIZEL made = {scaled(full.cx), scaled(full.cy)};
  if (!MayMake("DrvStretchBlt", PixelCount(made) * kArgbBytes)) return;
  BitmapSource slanted = MakeArgb(made.cx, made.cy);

  const PixelReader pixels(source);
  std::optional<PixelReader> mask_pixels;
  if (mask != nullptr) mask_pixels.emplace(*mask);
  // Pixels beside the parallelogram take the nearest colour of its border: none show, but for what
  // rounding leaves inside the clip.
  const auto index = [](double part, LONG count) {
    return static_cast<LONG>(std::clamp(part * count, 0.0, count - 1.0));
  };
  for (LONG y = 0; y < slanted.height; ++y) {
    for (LONG x = 0; x < slanted.width; ++x) {
      const double dx = area.left + (x + 0.5) * full.cx / slanted.width - a.x;
      const double dy = area.top + (y + 0.5) * full.cy / slanted.height - a.y;
      const LONG sx = index((dx * vy - dy * vx) / determinant, size.cx);
      const LONG sy = index((dy * ux - dx * uy) / determinant, size.cy);
      if (!pixels.Holds(rect.left + sx, rect.top + sy)) continue;
      const POINTL in_mask{mask_origin.x + sx, mask_origin.y + sy};
      if (mask_pixels && (!mask_pixels->Holds(in_mask.x, in_mask.y) ||
                          mask_pixels->Raw(in_mask.x, in_mask.y) == 0)) {
        continue;
      }
      SetPixel(slanted, x, y, pixels.Color(rect.left + sx, rect.top + sy) | kOpaque);
    }
  }
  const bool covers = mask == nullptr && rect.left >= 0 && rect.top >= 0 &&
                      rect.right <= source.width && rect.bottom <= source.height;
  if (covers) {
    StretchBlt(area, slanted, {0, 0, slanted.width, slanted.height}, kSourceCopy, nullptr,
               stretch_mode, inside);
  } else {
    LayOver(area, slanted, inside);
  }
}

}  // namespace quillo::host
