#include "host/cairo/cairo_path.h"

namespace quillo::host {

void AddToContext(cairo_t* context, const Path& path) {
  constexpr double kPixel = 1.0 / 16;
  cairo_new_path(context);
  for (const Figure& figure : path.Figures()) {
    const POINTFIX* p = figure.points.data();
    cairo_move_to(context, p->x * kPixel, p->y * kPixel);
    for (const Figure::Verb verb : figure.verbs) {
      if (verb == Figure::Verb::kLine) {
        ++p;
        cairo_line_to(context, p->x * kPixel, p->y * kPixel);
      } else {
        cairo_curve_to(context, p[1].x * kPixel, p[1].y * kPixel, p[2].x * kPixel, p[2].y * kPixel,
                       p[3].x * kPixel, p[3].y * kPixel);
        p += 3;
      }
    }
    if (figure.closed) cairo_close_path(context);
  }
}

}  // namespace quillo::host
