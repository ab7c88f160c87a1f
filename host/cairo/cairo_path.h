#pragma once

#include <cairo.h>

#include "host/engine/path.h"

namespace quillo::host {

/// Makes `path` the current path of `context`, page pixels being its units.
void AddToContext(cairo_t* context, const Path& path);

}  // namespace quillo::host
