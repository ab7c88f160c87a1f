#include "host/preview/wide_lines.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>
#include <vector>

#include "host/cairo/cairo_path.h"
#include "host/cairo/cairo_pen.h"
#include "host/engine/drawing.h"
#include "host/engine/far_path.h"
#include "host/engine/path_of_dc.h"

namespace quillo::host {

namespace {

/// The pen of a DC when it is wide, solid, of one colour, and covers what is there.
std::optional<EXTLOGPEN> SolidPenOf(HDC dc) {
  const HGDIOBJ selected = GetCurrentObject(dc, OBJ_PEN);
  EXTLOGPEN pen{};  // one with dashes of its own does not fit
  if (GetObjectType(selected) != OBJ_EXTPEN || GetObjectW(selected, sizeof pen, &pen) == 0 ||
      (pen.elpPenStyle & (PS_TYPE_MASK | PS_STYLE_MASK)) != (PS_GEOMETRIC | PS_SOLID) ||
      pen.elpBrushStyle != BS_SOLID || GetROP2(dc) != R2_COPYPEN) {
    return std::nullopt;
  }
  return pen;
}

/// The path of a DC, its pixels as sixteenths; only what is near.
Path PixelPathOf(HDC dc) {
  XFORM transform;
  GetWorldTransform(dc, &transform);
  ModifyWorldTransform(dc, nullptr, MWT_IDENTITY);
  Path path = PathOf(dc);
  SetWorldTransform(dc, &transform);
  return NearLine(path);
}

}  // namespace

WideLines::WideLines(SheetBitmap& sheet)
    : sheet_(sheet),
      mask_(cairo_image_surface_create(CAIRO_FORMAT_A8, sheet.Size().cx, sheet.Size().cy)),
      context_(cairo_create(mask_.get())) {
  cairo_set_antialias(context_.get(), CAIRO_ANTIALIAS_NONE);
}

void WideLines::Prepare(HDC dc, const EXTLOGPEN& pen, double scale) {
  cairo_t* const context = context_.get();
  FLOAT miter_limit = 1;
  GetMiterLimit(dc, &miter_limit);
  const double width = std::max(1.0, std::round(pen.elpWidth * scale));
  // The middle of a line of odd width is that of a pixel: GDI has those at whole numbers.
  const double middle = std::fmod(width, 2) / 2;
  cairo_set_line_width(context, width);
  SetLineShape(context, EndCapOf(pen.elpPenStyle), JoinOf(pen.elpPenStyle), miter_limit);
  cairo_save(context);
  cairo_translate(context, middle, middle);
  cairo_scale(context, 16, 16);
  AddToContext(context, PixelPathOf(dc));
  cairo_restore(context);
  if (cairo_status(context) != CAIRO_STATUS_SUCCESS) throw std::bad_alloc();
}

RECT WideLines::Reach() const {
  cairo_t* const context = context_.get();
  double left = 0, top = 0, right = 0, bottom = 0;
  cairo_path_extents(context, &left, &top, &right, &bottom);
  const double beyond =
      cairo_get_line_width(context) * std::max(1.0, cairo_get_miter_limit(context) / 2) + 1;
  const auto pixel = [](double at, LONG end) {
    return static_cast<LONG>(std::clamp(at, 0.0, static_cast<double>(end)));
  };
  const SIZE size = sheet_.Size();
  return {pixel(left - beyond, size.cx), pixel(top - beyond, size.cy),
          pixel(right + beyond + 1, size.cx), pixel(bottom + beyond + 1, size.cy)};
}

bool WideLines::Draw(HDC dc, double scale) {
  const std::optional<EXTLOGPEN> pen = SolidPenOf(dc);
  if (!pen) return false;
  Prepare(dc, *pen, scale);
  const RECT reach = Reach();
  const std::vector<RECT> areas = sheet_.Visible(dc, reach);
  AbortPath(dc);
  cairo_stroke(context_.get());
  cairo_surface_flush(mask_.get());
  GdiFlush();
  const std::byte colour[] = {std::byte{GetBValue(pen->elpColor)},
                              std::byte{GetGValue(pen->elpColor)},
                              std::byte{GetRValue(pen->elpColor)}};
  const int stride = cairo_image_surface_get_stride(mask_.get());
  unsigned char* const mask = cairo_image_surface_get_data(mask_.get());
  for (const RECT& area : areas) {
    for (LONG y = area.top; y < area.bottom; ++y) {
      const unsigned char* const row = mask + ptrdiff_t{y} * stride;
      for (LONG x = area.left; x < area.right; ++x) {
        if (row[x] != 0) std::ranges::copy(colour, sheet_.At(x, y));
      }
    }
  }
  for (LONG y = reach.top; y < reach.bottom; ++y) {
    std::fill_n(mask + ptrdiff_t{y} * stride + reach.left, reach.right - reach.left, 0);
  }
  cairo_surface_mark_dirty(mask_.get());
  return true;
}

}  // namespace quillo::host
