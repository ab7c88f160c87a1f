#include "host/cairo/cairo_pen.h"

#include <algorithm>

namespace quillo::host {

namespace {

cairo_line_cap_t CapOf(ULONG end_cap) {
  switch (end_cap) {
    case ENDCAP_BUTT:
      return CAIRO_LINE_CAP_BUTT;
    case ENDCAP_SQUARE:
      return CAIRO_LINE_CAP_SQUARE;
    default:
      return CAIRO_LINE_CAP_ROUND;
  }
}

cairo_line_join_t JoinOf(ULONG join) {
  switch (join) {
    case JOIN_BEVEL:
      return CAIRO_LINE_JOIN_BEVEL;
    case JOIN_MITER:
      return CAIRO_LINE_JOIN_MITER;
    default:
      return CAIRO_LINE_JOIN_ROUND;
  }
}

}  // namespace

void SetLineShape(cairo_t* context, ULONG end_cap, ULONG join, float miter_limit) {
  cairo_set_line_cap(context, CapOf(end_cap));
  cairo_set_line_join(context, JoinOf(join));
  cairo_set_miter_limit(context, std::max(1.0F, miter_limit));
}

}  // namespace quillo::host
