#pragma once

#include "host/engine/drawing.h"
#include "host/engine/path.h"

namespace quillo::host::emf {

/// The outline of the line that `pen` draws along `path`, to be filled in winding mode. Throws
/// std::bad_alloc when GDI has no memory for it.
Path Widened(const Path& path, const PenDescription& pen);

}  // namespace quillo::host::emf
