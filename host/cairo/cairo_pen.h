#pragma once

#include "base/ddi.h"

#include <cairo.h>

namespace quillo::host {

/// Draws the lines of `context` with an end cap (ENDCAP_*), a join (JOIN_*) and a miter limit, of
/// which cairo takes none below 1.
void SetLineShape(cairo_t* context, ULONG end_cap, ULONG join, float miter_limit);

}  // namespace quillo::host
