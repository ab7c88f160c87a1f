#include "host/pdf/pdf_page.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "host/base/text.h"
#include "host/cairo/cairo_path.h"
#include "host/cairo/cairo_pen.h"
#include "host/engine/blit_areas.h"
#include "host/engine/clusters.h"
#include "host/engine/raster.h"
#include "host/engine/raster_operation.h"
#include "host/engine/services/colours.h"
#include "host/engine/text_layout.h"
#include "host/pdf/hatch.h"
#include "host/pdf/pictures.h"

// Shapes and text. The blits are in pdf_page_blits.cpp.
namespace quillo::host::pdf {

namespace {

constexpr double kDotsPerInch = 96;

/// The width of lines of one device pixel: written to the file as 0, the thinnest line of every
/// device. (cairo draws nothing for 0 itself.)
constexpr double kThinnest = 1e-20;

cairo_operator_t OperatorOf(Blend blend) {
  switch (blend) {
    case Blend::kMultiply:
      return CAIRO_OPERATOR_MULTIPLY;
    case Blend::kScreen:
      return CAIRO_OPERATOR_SCREEN;
    case Blend::kDifference:
      return CAIRO_OPERATOR_DIFFERENCE;
    default:
      return CAIRO_OPERATOR_OVER;
  }
}

bool SamePixels(const ClipShape& a, const ClipShape& b) {
  return a.SameAs(b) || EqualRgn(a.Handle(), b.Handle()) != FALSE;
}

bool Contains(const RECTL& outer, const RECTL& inner) {
  return outer.left <= inner.left && outer.top <= inner.top && outer.right >= inner.right &&
         outer.bottom >= inner.bottom;
}

/// Whether it keeps the page or makes it black.
bool IsMask(const Mixing& mixing) {
  return mixing.flip == 0 && (mixing.keep == 0 || mixing.keep == 0xFFFFFF);
}

/// `reach`: how far ink goes beyond the path.
RECTL PixelBounds(const Path& path, double reach = 0) {
  const RECTFX bounds = path.Bounds();
  const auto beyond = static_cast<LONG>(std::min(std::ceil(reach), 0x1p28));
  return {(bounds.xLeft >> 4) - beyond, (bounds.yTop >> 4) - beyond,
          ((bounds.xRight + 15) >> 4) + beyond, ((bounds.yBottom + 15) >> 4) + beyond};
}

}  // namespace

PdfPage::PdfPage(cairo_t* context, double dpi, PdfFonts& fonts, Approximations& approximations)
    : context_(context), dot_(dpi / kDotsPerInch), fonts_(fonts), approximations_(approximations) {
  // Paper: raster operations read it.
  SetColour(0xFFFFFF);
  cairo_paint(context_);
}

void PdfPage::Begin(const ClipShape& clip) {
  run_.Draw(context_);
  if (SamePixels(clip, clip_)) return;
  clip_ = clip;
  cairo_reset_clip(context_);
  if (clip.Unbounded()) return;
  if (clip.IsRectangle()) {
    const RECTL bounds = clip.Bounds();
    cairo_new_path(context_);
    cairo_rectangle(context_, bounds.left, bounds.top, bounds.right - bounds.left,
                    bounds.bottom - bounds.top);
  } else {
    AddToContext(context_, clip.Outline());
    cairo_set_fill_rule(context_, CAIRO_FILL_RULE_EVEN_ODD);
  }
  cairo_clip(context_);
}

void PdfPage::Finish() {
  SettleInversion();
  run_.Draw(context_);
}

void PdfPage::SettleInversion() {
  if (!inversion_) return;
  const Inversion settled = *std::exchange(inversion_, std::nullopt);
  FillRectangle(settled.area, BrushDescription::Solid(settled.colour), kPatternInvert,
                settled.state);
}

void PdfPage::FillRectangle(const RECTL& area, const BrushDescription& brush, uint8_t rop3,
                            const DrawState& state) {
  WithInk(brush, rop3, NameOfRop3(rop3), area, state, [&] {
    cairo_new_path(context_);
    cairo_rectangle(context_, area.left, area.top, area.right - area.left, area.bottom - area.top);
    cairo_fill(context_);
  });
}

void PdfPage::WithInk(const BrushDescription& brush, uint8_t rop3, const std::string& name,
                      const RECTL& bounds, const DrawState& state,
                      const std::function<void()>& draw) {
  const bool hatched = brush.kind == BrushDescription::Kind::kHatched && brush.hatch < HS_DDI_MAX;
  const bool patterned = brush.kind == BrushDescription::Kind::kPattern && brush.pattern != nullptr;
  std::vector<Mixing> mixings;  // of a hatch: of its gaps, and of its lines
  SIZEL size{};
  if (patterned) {
    const ReadablePicture tile(*brush.pattern);
    const PixelReader pixels(*tile);
    size = {(*tile).width, (*tile).height};
    for (LONG y = 0; y < size.cy; ++y) {
      for (LONG x = 0; x < size.cx; ++x) mixings.push_back(MixingOf(rop3, pixels.Colour(x, y), 0));
    }
  } else {
    const auto mixing_of = [&](COLORREF ink) { return MixingOf(rop3, SwapRedBlue(ink), 0); };
    const Mixing stays{0xFFFFFF, 0};
    if (hatched) mixings.push_back(state.opaque_background ? mixing_of(brush.background) : stays);
    mixings.push_back(mixing_of(brush.colour));
  }
  Layers layers = LayersOf(mixings);
  if (inversion_ && Contains(inversion_->area, bounds) && std::ranges::all_of(mixings, IsMask)) {
    // What it clears has the colour when the inversion is taken back.
    layers = {.list = {{Blend::kNormal, {}}}};
    for (const Mixing& mixing : mixings) {
      layers.list[0].pixels.push_back(mixing.keep != 0 ? 0
                                                       : SwapRedBlue(inversion_->colour) | kOpaque);
    }
  } else {
    SettleInversion();
  }
  Begin(state.clip);
  if (!layers.exact) ++approximations_[name];
  for (const Layers::Layer& layer : layers.list) {
    SetBlend(layer.blend);
    if (patterned) {
      SetPattern(AlphaPicture(layer.pixels, size.cx, size.cy).get(), CAIRO_EXTEND_REPEAT,
                 {double{1} * state.brush_origin.x, double{1} * state.brush_origin.y});
    } else if (hatched) {
      const double cell = kHatchCell * dot_;
      const PointD origin{std::fmod(state.brush_origin.x, cell),
                          std::fmod(state.brush_origin.y, cell)};
      SetPattern(
          HatchDrawing(brush.hatch, layer.pixels[0], layer.pixels[1], DotsOf(bounds, origin)).get(),
          CAIRO_EXTEND_NONE, origin);
    } else {
      SetColour(layer.pixels[0]);
    }
    draw();
  }
}

void PdfPage::SetBlend(Blend blend) { cairo_set_operator(context_, OperatorOf(blend)); }

void PdfPage::SetColour(uint32_t colour) {
  cairo_set_source_rgb(context_, (colour >> 16 & 0xFF) / 255.0, (colour >> 8 & 0xFF) / 255.0,
                       (colour & 0xFF) / 255.0);
}

cairo_rectangle_t PdfPage::DotsOf(const RECTL& bounds, const PointD& origin) const {
  double left = 0, top = 0, right = 0, bottom = 0;
  cairo_clip_extents(context_, &left, &top, &right, &bottom);
  const double x = std::floor((std::max<double>(left, bounds.left) - origin.x) / dot_);
  const double y = std::floor((std::max<double>(top, bounds.top) - origin.y) / dot_);
  const double end_x = std::ceil((std::min<double>(right, bounds.right) - origin.x) / dot_);
  const double end_y = std::ceil((std::min<double>(bottom, bounds.bottom) - origin.y) / dot_);
  return {x, y, std::max(1.0, end_x - x), std::max(1.0, end_y - y)};
}

void PdfPage::SetPattern(cairo_surface_t* picture, cairo_extend_t extend, const PointD& origin) {
  const CairoPattern pattern(cairo_pattern_create_for_surface(picture));
  cairo_pattern_set_extend(pattern.get(), extend);
  cairo_pattern_set_filter(pattern.get(), CAIRO_FILTER_NEAREST);
  cairo_matrix_t to_tile;
  cairo_matrix_init_scale(&to_tile, 1 / dot_, 1 / dot_);
  cairo_matrix_translate(&to_tile, -origin.x, -origin.y);
  cairo_pattern_set_matrix(pattern.get(), &to_tile);
  cairo_set_source(context_, pattern.get());
}

void PdfPage::SetPen(const PenDescription& pen) {
  const double scale = pen.geometric ? pen.world_to_device.eM11 : 1;
  cairo_set_line_width(context_, pen.geometric ? std::abs(pen.width * scale) : kThinnest);
  SetLineShape(context_, pen.end_cap, pen.join, pen.miter_limit);
  std::vector<double> dashes;
  for (const float length : pen.style) dashes.push_back(length * (pen.geometric ? scale : dot_));
  if (pen.alternate) dashes = {dot_, dot_};
  cairo_set_dash(context_, dashes.data(), static_cast<int>(dashes.size()), 0);
}

void PdfPage::Stroke(const Path& path, const PenDescription& pen, const DrawState& state) {
  SetPen(pen);
  const double miter = std::max(2.0, cairo_get_miter_limit(context_));
  const double reach = std::max(dot_, cairo_get_line_width(context_) * miter);
  WithInk(pen.brush, TernaryOf(state.rop2), NameOfRop2(state.rop2), PixelBounds(path, reach), state,
          [&] {
            AddToContext(context_, path);
            cairo_stroke(context_);
          });
}

void PdfPage::Fill(const Path& path, const BrushDescription& brush, FillMode mode,
                   const DrawState& state) {
  WithInk(brush, TernaryOf(state.rop2), NameOfRop2(state.rop2), PixelBounds(path), state, [&] {
    AddToContext(context_, path);
    cairo_set_fill_rule(
        context_, mode == FillMode::kWinding ? CAIRO_FILL_RULE_WINDING : CAIRO_FILL_RULE_EVEN_ODD);
    cairo_fill(context_);
  });
}

void PdfPage::StrokeAndFill(const Path& path, const PenDescription& pen,
                            const BrushDescription& brush, FillMode mode, const DrawState& state) {
  Fill(path, brush, mode, state);
  Stroke(path, pen, state);
}

void PdfPage::Line(POINTFIX from, POINTFIX to, const PenDescription& pen, const DrawState& state) {
  Path path;
  path.MoveTo(from);
  path.LineTo(to);
  Stroke(path, pen, state);
}

void PdfPage::Paint(const ClipShape& area, const BrushDescription& brush, const DrawState& state) {
  DrawState inside = state;
  inside.clip = state.clip.Combined(area, RGN_AND);
  WithInk(brush, TernaryOf(state.rop2), NameOfRop2(state.rop2), area.Bounds(), inside,
          [&] { cairo_paint(context_); });
}

double PdfPage::Text(const TextDescription& text, const DrawState& state) {
  const TextLayout layout = LayOut(text);
  DrawState copying = state;
  copying.rop2 = R2_COPYPEN;
  const BrushDescription background = BrushDescription::Solid(text.background);
  if (text.opaque) BitBlt(*text.opaque, kPatternCopy, &background, nullptr, {}, state);
  if (text.text.empty()) return 0;
  if (state.opaque_background) {
    Fill(OutlineOf(CellOf(text, layout)), background, FillMode::kAlternate, copying);
  }
  SettleInversion();
  if (!SamePixels(state.clip, clip_)) Begin(state.clip);
  for (const GlyphRun& run : layout.runs) AddGlyphs(text, layout, run);
  const BrushDescription ink = BrushDescription::Solid(text.colour);
  for (const Quadrangle& bar : BarsOf(text, layout)) {
    Fill(OutlineOf(bar), ink, FillMode::kAlternate, copying);
  }
  return layout.length;
}

void PdfPage::AddGlyphs(const TextDescription& text, const TextLayout& layout,
                        const GlyphRun& run) {
  TextRun::Look look;
  look.font = &fonts_.Find(*run.font);
  const double em = look.font->em;
  const XFORML& map = run.font_to_device;
  look.matrix = {map.eM11 * em, map.eM12 * em, map.eM21 * em, map.eM22 * em, 0, 0};
  look.colour = text.colour;
  cairo_matrix_t inverse = look.matrix;
  if (cairo_matrix_invert(&inverse) != CAIRO_STATUS_SUCCESS) return;
  for (size_t i = run.first; i < run.first + run.count; ++i) {
    const USHORT glyph = layout.glyphs[i];
    const size_t unit = layout.unit_of[i];
    if (glyph == kNoGlyph) continue;
    std::wstring character = L"\xFFFD";  // of a glyph number
    if (!text.glyph_indexes) {
      character = IsPair(text.text, unit) ? text.text.substr(unit, 2)
                                          : std::wstring(1, AsSearched(text.text[unit]));
      if (ShowsNothing(character[0])) continue;
      if (IsNoncharacter(CharacterAt(text.text, unit))) character = L"\xFFFD";
    }
    if (!run_.Continues(look, layout.origins[i])) {
      run_.Draw(context_);
      run_.Begin(look);
    }
    run_.Add(glyph, layout.origins[i], run.font->AdvanceOf(glyph) / em, ToUtf8(character));
  }
}

}  // namespace quillo::host::pdf
