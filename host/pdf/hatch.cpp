#include "host/pdf/hatch.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

namespace quillo::host::pdf {

namespace {

constexpr double kFirstLevel = 3, kFirstUpright = 4;  // as GDI draws them

/// The hatches of parallel lines that a hatch consists of.
std::vector<ULONG> DirectionsOf(ULONG hatch) {
  if (hatch == HS_CROSS) return {HS_HORIZONTAL, HS_VERTICAL};
  if (hatch == HS_DIAGCROSS) return {HS_FDIAGONAL, HS_BDIAGONAL};
  return {hatch};
}

/// Where the lines begin that touch what is between two edges; `phase`: where one of them does.
std::vector<double> LinesBetween(double first, double last, double phase) {
  std::vector<double> lines;
  const auto end = static_cast<int>(std::ceil((last - phase) / kHatchCell));
  for (auto line = static_cast<int>(std::floor((first - phase) / kHatchCell)); line < end; ++line) {
    lines.push_back(phase + kHatchCell * line);
  }
  return lines;
}

/// Adds the outlines of parallel lines to the path.
void AddLines(cairo_t* context, ULONG direction, const cairo_rectangle_t& area) {
  const double right = area.x + area.width, bottom = area.y + area.height;
  if (direction == HS_HORIZONTAL) {
    for (const double y : LinesBetween(area.y, bottom, kFirstLevel)) {
      cairo_rectangle(context, area.x, y, area.width, 1);
    }
    return;
  }
  // Down an area an upright line stays, and a diagonal goes as far as the area is high.
  double phase = kFirstUpright, shift = 0;
  if (direction != HS_VERTICAL) {
    const double slope = direction == HS_FDIAGONAL ? 1 : -1;
    phase = slope * area.y - 0.5;
    shift = slope * area.height;
  }
  for (const double x :
       LinesBetween(area.x - std::max(shift, 0.0), right - std::min(shift, 0.0), phase)) {
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
