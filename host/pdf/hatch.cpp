#include "host/pdf/hatch.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

namespace quillo::host::pdf {

namespace {

constexpr double kFirst = kHatchCell / 2;  // where upright and level lines begin

/// The hatches of parallel lines that a hatch consists of.
std::vector<ULONG> DirectionsOf(ULONG hatch) {
  if (hatch == HS_CROSS) return {HS_HORIZONTAL, HS_VERTICAL};
  if (hatch == HS_DIAGCROSS) return {HS_FDIAGONAL, HS_BDIAGONAL};
  return {hatch};
}

/// Where the first line begins that touches what lies beyond `edge`.
double FirstLine(double edge, double phase) {
  return std::floor((edge - phase) / kHatchCell) * kHatchCell + phase;
}

/// Adds the outlines of parallel lines to the path.
void AddLines(cairo_t* context, ULONG direction, const cairo_rectangle_t& area) {
  const double right = area.x + area.width, bottom = area.y + area.height;
  if (direction == HS_HORIZONTAL) {
    for (double y = FirstLine(area.y, kFirst); y < bottom; y += kHatchCell) {
      cairo_rectangle(context, area.x, y, area.width, 1);
    }
    return;
  }
  // Down an area an upright line stays, and a diagonal goes as far as the area is high.
  const double shift = direction == HS_VERTICAL    ? 0
                       : direction == HS_FDIAGONAL ? area.height
                                                   : -area.height;
  const double phase = direction == HS_VERTICAL    ? kFirst
                       : direction == HS_FDIAGONAL ? area.y - 0.5
                                                   : -area.y - 0.5;
  for (double x = FirstLine(area.x - std::max(shift, 0.0), phase); x < right - std::min(shift, 0.0);
       x += kHatchCell) {
    cairo_move_to(context, x, area.y);
    cairo_line_to(context, x + 1, area.y);
    cairo_line_to(context, x + 1 + shift, bottom);
    cairo_line_to(context, x + shift, bottom);
    cairo_close_path(context);
  }
}

void SetColour(cairo_t* context, uint32_t colour) {
  cairo_set_source_rgb(context, (colour >> 16 & 0xFF) / 255.0, (colour >> 8 & 0xFF) / 255.0,
                       (colour & 0xFF) / 255.0);
}

bool IsSeen(uint32_t colour) { return colour >> 24 != 0; }

}  // namespace

CairoSurface HatchDrawing(ULONG hatch, uint32_t gaps, uint32_t lines,
                          const cairo_rectangle_t& area) {
  CairoSurface drawing(cairo_recording_surface_create(CAIRO_CONTENT_COLOR_ALPHA, &area));
  const CairoContext owned(cairo_create(drawing.get()));
  cairo_t* context = owned.get();
  if (IsSeen(gaps)) {
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
    for (const ULONG direction : DirectionsOf(hatch)) {
      if (IsSeen(lines)) break;
      cairo_rectangle(context, area.x, area.y, area.width, area.height);
      AddLines(context, direction, area);
      cairo_clip(context);
    }
    SetColour(context, gaps);
    cairo_paint(context);
  }
  if (IsSeen(lines)) {
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_WINDING);
    SetColour(context, lines);
    for (const ULONG direction : DirectionsOf(hatch)) AddLines(context, direction, area);
    cairo_fill(context);
  }
  if (cairo_status(context) != CAIRO_STATUS_SUCCESS) throw std::bad_alloc();
  return drawing;
}

}  // namespace quillo::host::pdf
