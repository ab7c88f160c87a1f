#pragma once

#include "host/engine/drawing.h"
#include "host/engine/path.h"

namespace quillo::host::emf {

/// The outline of what `pen` draws along `path`, to be filled in winding mode. Throws
/// std::bad_alloc when GDI is out of memory.
Path Widened(const Path& path, const PenDescription& pen);

}  // namespace quillo::host::emf
