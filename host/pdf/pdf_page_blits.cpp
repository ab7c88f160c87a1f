#include <algorithm>
#include <cmath>
#include <vector>

#include "host/cairo/cairo_path.h"
#include "host/engine/blit_areas.h"
#include "host/engine/raster.h"
#include "host/engine/raster_operation.h"
#include "host/engine/services/colours.h"
#include "host/pdf/pdf_page.h"
#include "host/pdf/pictures.h"

// Pictures and gradients. A picture is stored as it is, however it is stretched, mirrored or
// turned.
namespace quillo::host::pdf {

namespace {

bool SameRect(const RECTL& a, const RECTL& b) {
  return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

/// The unit square on a rectangle, which may be mirrored.
cairo_matrix_t PlacingOf(const RECTL& target) {
  return {double{1} * target.right - target.left,
          0,
          0,
          double{1} * target.bottom - target.top,
          static_cast<double>(target.left),
          static_cast<double>(target.top)};
}

/// The value of each pixel of a rectangle.
template <typename Value>
auto Collect(const RECTL& rect, Value value) {
  std::vector<decltype(value(LONG{}, LONG{}))> values;
  values.reserve(static_cast<size_t>(PixelCount(SizeOf(rect))));
  for (LONG y = rect.top; y < rect.bottom; ++y) {
    for (LONG x = rect.left; x < rect.right; ++x) values.push_back(value(x, y));
  }
  return values;
}

/// A pixel with premultiplied alpha whose colours do not exceed the alpha.
uint32_t Sane(uint32_t argb) {
  const uint32_t alpha = argb >> 24;
  uint32_t sane = argb & kOpaque;
  for (int shift = 0; shift < 24; shift += 8) {
    sane |= std::min(argb >> shift & 0xFF, alpha) << shift;
  }
  return sane;
}

/// The one colour that stands for a brush where a picture is mixed with it: of a pattern, its mean.
uint32_t MeanColour(const BrushDescription& brush) {
  if (brush.kind != BrushDescription::Kind::kPattern || brush.pattern == nullptr) {
    return SwapRedBlue(brush.colour);
  }
  const ReadablePicture tile(*brush.pattern);
  const PixelReader pixels(*tile);
  uint64_t sums[3] = {}, count = 0;
  for (const uint32_t colour :
       Collect(WholeOf(*tile), [&](LONG x, LONG y) { return pixels.Colour(x, y); })) {
    for (int i = 0; i < 3; ++i) sums[i] += colour >> 8 * i & 0xFF;
    ++count;
  }
  if (count == 0) return 0;
  return static_cast<uint32_t>(sums[2] / count << 16 | sums[1] / count << 8 | sums[0] / count);
}

}  // namespace

void PdfPage::BeginPicture(const ClipShape& clip) {
  SettleInversion();
  Begin(clip);
}

void PdfPage::DrawPicture(cairo_surface_t* picture, const cairo_matrix_t& placing, Blend blend,
                          double alpha) {
  cairo_save(context_);
  cairo_transform(context_, &placing);
  cairo_scale(context_, 1.0 / cairo_image_surface_get_width(picture),
              1.0 / cairo_image_surface_get_height(picture));
  SetBlend(blend);
  if (cairo_image_surface_get_format(picture) == CAIRO_FORMAT_A1) {
    cairo_mask_surface(context_, picture, 0, 0);  // in the colour that is set
  } else {
    cairo_set_source_surface(context_, picture, 0, 0);
    // Between pixels that show and those that do not, smoothing would show black.
    const bool smooth = cairo_image_surface_get_format(picture) == CAIRO_FORMAT_RGB24;
    cairo_pattern_set_filter(cairo_get_source(context_),
                             smooth ? CAIRO_FILTER_BILINEAR : CAIRO_FILTER_NEAREST);
    if (alpha < 1) {
      cairo_paint_with_alpha(context_, alpha);
    } else {
      cairo_paint(context_);
    }
  }
  cairo_restore(context_);
}

void PdfPage::CopyPicture(const BitmapSource& source, const RECTL& rect,
                          const cairo_matrix_t& placing) {
  if (source.bits_per_pixel != 1) {
    DrawPicture(OpaquePicture(source, rect).get(), placing, Blend::kNormal);
    return;
  }
  // One bit a pixel stays that: one colour, and the other one through a mask.
  const auto colour = [&](size_t index) {
    return index < source.palette.size() ? source.palette[index] : 0;
  };
  cairo_save(context_);
  cairo_transform(context_, &placing);
  cairo_new_path(context_);
  cairo_rectangle(context_, 0, 0, 1, 1);
  SetBlend(Blend::kNormal);
  SetColour(colour(0));
  cairo_fill(context_);
  cairo_restore(context_);
  SetColour(colour(1));
  DrawPicture(BitMask(source, rect).get(), placing, Blend::kNormal);
}

void PdfPage::DrawMixed(const RECTL& rect, const cairo_matrix_t& placing, const std::string& name,
                        const std::function<Mixing(LONG x, LONG y)>& mixing_at) {
  const Layers layers = LayersOf(Collect(rect, mixing_at));
  if (!layers.exact) ++approximations_[name];
  const SIZEL size = SizeOf(rect);
  for (const Layers::Layer& layer : layers.list) {
    DrawPicture(AlphaPicture(layer.pixels, size.cx, size.cy).get(), placing, layer.blend);
  }
}

void PdfPage::BitBlt(const RECTL& target, uint8_t rop3, const BrushDescription* brush,
                     const BitmapSource* source, POINTL source_origin, const DrawState& state) {
  if (source != nullptr && UsesSource(rop3)) {
    const SIZEL size = SizeOf(Ordered(target));
    StretchBlt(
        target, *source,
        {source_origin.x, source_origin.y, source_origin.x + size.cx, source_origin.y + size.cy},
        rop3, brush, COLORONCOLOR, state);
    return;
  }
  const RECTL area = Ordered(target);
  const BrushDescription paint = brush != nullptr ? *brush : BrushDescription();
  if (rop3 == kPatternInvert && paint.kind == BrushDescription::Kind::kSolid) {
    const bool takes_back =
        inversion_ && inversion_->colour == paint.colour && SameRect(inversion_->area, area);
    if (!takes_back) SettleInversion();
    inversion_ = takes_back ? std::nullopt : std::optional(Inversion{paint.colour, area, state});
    return;
  }
  FillRectangle(area, paint, rop3, state);
}

void PdfPage::StretchBlt(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                         uint8_t rop3, const BrushDescription* brush, ULONG,
                         const DrawState& state) {
  if (!UsesSource(rop3)) {
    BitBlt(target, rop3, brush, nullptr, {}, state);
    return;
  }
  RECTL to = target, from = source_rect;
  if (!CropStretch(to, from, source) || IsEmpty(Ordered(to))) return;
  BeginPicture(state.clip);
  const ReadablePicture readable(source);
  if (rop3 == kSourceCopy) {
    CopyPicture(*readable, from, PlacingOf(to));
    return;
  }
  const uint32_t paint = brush != nullptr ? MeanColour(*brush) : 0;
  const PixelReader pixels(*readable);
  DrawMixed(from, PlacingOf(to), NameOfRop3(rop3),
            [&](LONG x, LONG y) { return MixingOf(rop3, paint, pixels.Colour(x, y)); });
}

void PdfPage::MaskBlt(const RECTL& target, uint16_t rop4, const BrushDescription* brush,
                      const BitmapSource& source, const RECTL& source_rect,
                      const BitmapSource& mask, POINTL mask_origin, const DrawState& state) {
  RECTL to = target, from = source_rect;
  if (!CropStretch(to, from, source) || IsEmpty(Ordered(to))) return;
  BeginPicture(state.clip);
  const ReadablePicture readable(source);
  const uint32_t paint = brush != nullptr ? MeanColour(*brush) : 0;
  const PixelReader pixels(*readable), bits(mask);
  DrawMixed(from, PlacingOf(to), NameOfRop3(static_cast<uint8_t>(rop4)), [&](LONG x, LONG y) {
    const POINTL at{mask_origin.x + x - source_rect.left, mask_origin.y + y - source_rect.top};
    if (!bits.Holds(at.x, at.y)) return Mixing{0xFFFFFF, 0};
    const auto rop3 = static_cast<uint8_t>(bits.Raw(at.x, at.y) != 0 ? rop4 : rop4 >> 8);
    return MixingOf(rop3, paint, pixels.Colour(x, y));
  });
}

void PdfPage::PlgBlt(const std::array<POINTFIX, 3>& target, const BitmapSource& source,
                     const RECTL& source_rect, const BitmapSource* mask, POINTL mask_origin, ULONG,
                     const DrawState& state) {
  if (IsEmpty(source_rect)) return;
  constexpr double kPixel = 1.0 / 16;
  const auto [a, b, c] = target;
  const cairo_matrix_t placing = {(b.x - a.x) * kPixel, (b.y - a.y) * kPixel, (c.x - a.x) * kPixel,
                                  (c.y - a.y) * kPixel, a.x * kPixel,         a.y * kPixel};
  cairo_matrix_t inverse = placing;
  if (cairo_matrix_invert(&inverse) != CAIRO_STATUS_SUCCESS) return;
  BeginPicture(state.clip);
  const ReadablePicture readable(source);
  const RECTL whole = WholeOf(source);
  const bool inside = source_rect.left >= 0 && source_rect.top >= 0 &&
                      source_rect.right <= whole.right && source_rect.bottom <= whole.bottom;
  if (mask == nullptr && inside) {
    CopyPicture(*readable, source_rect, placing);
    return;
  }
  const PixelReader pixels(*readable), bits(mask != nullptr ? *mask : *readable);
  const auto pixel_at = [&](LONG x, LONG y) -> uint32_t {
    const POINTL at{mask_origin.x + x - source_rect.left, mask_origin.y + y - source_rect.top};
    if (!pixels.Holds(x, y)) return 0;
    if (mask != nullptr && (!bits.Holds(at.x, at.y) || bits.Raw(at.x, at.y) == 0)) return 0;
    return pixels.Colour(x, y) | kOpaque;
  };
  const SIZEL size = SizeOf(source_rect);
  DrawPicture(AlphaPicture(Collect(source_rect, pixel_at), size.cx, size.cy).get(), placing,
              Blend::kNormal);
}

void PdfPage::AlphaBlend(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                         BLENDFUNCTION blend, const DrawState& state) {
  RECTL to = target, from = source_rect;
  if (!CropStretch(to, from, source) || IsEmpty(Ordered(to))) return;
  BeginPicture(state.clip);
  const ReadablePicture readable(source);
  const PixelReader pixels(*readable);
  const bool with_alpha = (blend.AlphaFormat & AC_SRC_ALPHA) != 0 && source.bits_per_pixel == 32;
  const SIZEL size = SizeOf(from);
  const CairoSurface picture =
      with_alpha
          ? AlphaPicture(Collect(from, [&](LONG x, LONG y) { return Sane(pixels.Colour(x, y)); }),
                         size.cx, size.cy)
          : OpaquePicture(*readable, from);
  DrawPicture(picture.get(), PlacingOf(to), Blend::kNormal, blend.SourceConstantAlpha / 255.0);
}

void PdfPage::TransparentBlt(const RECTL& target, const BitmapSource& source,
                             const RECTL& source_rect, uint32_t key, const DrawState& state) {
  RECTL to = target, from = source_rect;
  if (!CropStretch(to, from, source) || IsEmpty(Ordered(to))) return;
  BeginPicture(state.clip);
  const ReadablePicture readable(source);
  const PixelReader pixels(*readable);
  const auto pixel_at = [&](LONG x, LONG y) -> uint32_t {
    const uint32_t colour = pixels.Colour(x, y) & ~kOpaque;
    return colour == (key & ~kOpaque) ? 0 : colour | kOpaque;
  };
  const SIZEL size = SizeOf(from);
  DrawPicture(AlphaPicture(Collect(from, pixel_at), size.cx, size.cy).get(), PlacingOf(to),
              Blend::kNormal);
}

void PdfPage::GradientFill(std::span<const TRIVERTEX> vertices, std::span<const ULONG> mesh,
                           ULONG mode, const DrawState& state) {
  constexpr double kFull = 0xFF00;
  BeginPicture(state.clip);
  SetBlend(Blend::kNormal);
  const size_t corners = mode == GRADIENT_FILL_TRIANGLE ? 3 : 2;
  for (size_t i = 0; i + corners <= mesh.size(); i += corners) {
    const auto numbers = mesh.subspan(i, corners);
    if (std::ranges::any_of(numbers, [&](ULONG n) { return n >= vertices.size(); })) continue;
    const TRIVERTEX &first = vertices[numbers[0]], &last = vertices[numbers[1]];
    cairo_new_path(context_);
    if (mode == GRADIENT_FILL_TRIANGLE) {
      const CairoPattern pattern(cairo_pattern_create_mesh());
      cairo_mesh_pattern_begin_patch(pattern.get());
      for (unsigned corner = 0; corner < 3; ++corner) {
        const TRIVERTEX& at = vertices[numbers[corner]];
        (corner == 0 ? cairo_mesh_pattern_move_to : cairo_mesh_pattern_line_to)(pattern.get(), at.x,
                                                                                at.y);
        cairo_mesh_pattern_set_corner_color_rgb(pattern.get(), corner, at.Red / kFull,
                                                at.Green / kFull, at.Blue / kFull);
      }
      cairo_mesh_pattern_end_patch(pattern.get());
      cairo_set_source(context_, pattern.get());
      cairo_paint(context_);
      continue;
    }
    const bool across = mode == GRADIENT_FILL_RECT_H;
    const CairoPattern pattern(cairo_pattern_create_linear(
        first.x, first.y, across ? last.x : first.x, across ? first.y : last.y));
    for (const TRIVERTEX* end : {&first, &last}) {
      cairo_pattern_add_color_stop_rgb(pattern.get(), end == &last ? 1 : 0, end->Red / kFull,
                                       end->Green / kFull, end->Blue / kFull);
    }
    cairo_set_source(context_, pattern.get());
    cairo_rectangle(context_, first.x, first.y, double{1} * last.x - first.x,
                    double{1} * last.y - first.y);
    cairo_fill(context_);
  }
}

}  // namespace quillo::host::pdf
