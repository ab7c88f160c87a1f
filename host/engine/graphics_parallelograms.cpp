#include <algorithm>
#include <cmath>

#include "host/engine/blit_areas.h"
#include "host/engine/graphics.h"
#include "host/engine/raster.h"
#include "host/engine/raster_operation.h"

// Parallelograms. Upright ones and quarter turns are stretched; any other is a picture that the
// engine makes.
namespace quillo::host {
namespace {

/// Maps between a parallelogram on the page and the pixels of a source rectangle.
class SlantMap {
 public:
  /// `corners`: top left, top right and bottom left, in page pixels.
  SlantMap(const std::array<PointD, 3>& corners, SIZEL source)
      : corner_(corners[0]),
        right_{corners[1].x - corners[0].x, corners[1].y - corners[0].y},
        down_{corners[2].x - corners[0].x, corners[2].y - corners[0].y},
        determinant_(right_.x * down_.y - right_.y * down_.x),
        source_(source) {}

  bool Invertible() const { return determinant_ != 0; }

  Path Outline() const {
    Path outline;
    outline.MoveTo(corner_.x, corner_.y);
    outline.LineTo(corner_.x + right_.x, corner_.y + right_.y);
    outline.LineTo(corner_.x + right_.x + down_.x, corner_.y + right_.y + down_.y);
    outline.LineTo(corner_.x + down_.x, corner_.y + down_.y);
    outline.CloseFigure();
    return outline;
  }

  /// The source pixel at a point of the page. Outside the parallelogram it is the nearest pixel of
  /// the border; those show only where rounding leaves them inside the clip.
  POINTL SourceOf(PointD point) const {
    const double dx = point.x - corner_.x, dy = point.y - corner_.y;
    const auto index = [](double part, LONG count) {
      return static_cast<LONG>(std::clamp(part * count, 0.0, count - 1.0));
    };
    return {index((dx * down_.y - dy * down_.x) / determinant_, source_.cx),
            index((dy * right_.x - dx * right_.y) / determinant_, source_.cy)};
  }

 private:
  PointD corner_, right_, down_;  // down and right: the edges from the corner
  double determinant_;
  SIZEL source_;
};

}  // namespace

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
    StretchBlt({round(a.x), round(a.y), round(c.x), round(b.y)}, turned, WholeOf(turned),
               kSourceCopy, nullptr, stretch_mode, state);
    return;
  }

  Slant({{{a.x / 16.0, a.y / 16.0}, {b.x / 16.0, b.y / 16.0}, {c.x / 16.0, c.y / 16.0}}}, *readable,
        source_rect, mask, mask_origin, stretch_mode, state);
}

/// Draws the bounding rectangle of the parallelogram with its outline as the clip.
void Graphics::Slant(const std::array<PointD, 3>& corners, const BitmapSource& source,
                     const RECTL& rect, const BitmapSource* mask, POINTL mask_origin,
                     ULONG stretch_mode, const DrawState& state) {
  const SlantMap map(corners, SizeOf(rect));
  if (!map.Invertible()) return;
  DrawState inside = state;
  inside.clip =
      state.clip.Combined(ClipShape::OfPath(map.Outline(), FillMode::kAlternate), RGN_AND);
  const RECTL area = Visible(inside.clip.Bounds(), inside.clip);
  if (IsEmpty(area)) return;

  // Pixels enough to show those of the source, but no more than the page has.
  constexpr double kMinPixels = 1 << 20;
  const SIZEL full = SizeOf(area);
  const double wanted = std::max(4.0 * PixelCount(SizeOf(rect)), kMinPixels);
  const double scale = std::min(1.0, std::sqrt(wanted / PixelCount(full)));
  const auto scaled = [&](LONG length) {
    return std::max<LONG>(1, static_cast<LONG>(std::lround(length * scale)));
  };
  const SIZEL made = {scaled(full.cx), scaled(full.cy)};
  if (!MayMake("DrvStretchBlt", PixelCount(made) * kArgbBytes)) return;
  BitmapSource slanted = MakeArgb(made.cx, made.cy);

  const PixelReader pixels(source);
  std::optional<PixelReader> mask_pixels;
  if (mask != nullptr) mask_pixels.emplace(*mask);
  for (LONG y = 0; y < slanted.height; ++y) {
    for (LONG x = 0; x < slanted.width; ++x) {
      const auto [sx, sy] = map.SourceOf({area.left + (x + 0.5) * full.cx / slanted.width,
                                          area.top + (y + 0.5) * full.cy / slanted.height});
      if (!pixels.Holds(rect.left + sx, rect.top + sy)) continue;
      const POINTL in_mask{mask_origin.x + sx, mask_origin.y + sy};
      if (mask_pixels && (!mask_pixels->Holds(in_mask.x, in_mask.y) ||
                          mask_pixels->Raw(in_mask.x, in_mask.y) == 0)) {
        continue;
      }
      SetPixel(slanted, x, y, pixels.Colour(rect.left + sx, rect.top + sy) | kOpaque);
    }
  }
  const bool covers = mask == nullptr && rect.left >= 0 && rect.top >= 0 &&
                      rect.right <= source.width && rect.bottom <= source.height;
  if (covers) {
    StretchBlt(area, slanted, WholeOf(slanted), kSourceCopy, nullptr, stretch_mode, inside);
  } else {
    LayOver(area, slanted, inside);
  }
}

}  // namespace quillo::host
