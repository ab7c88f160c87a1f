#pragma once

#include "host/engine/path.h"

namespace quillo::host::emf {

// Paths that lead far out of every sheet cost time and memory wherever their rows are counted. What
// of them comes near a sheet is drawn instead.

/// Whether the path leaves the space around the page that is worth drawing in.
bool LeadsFar(const Path& path);

/// What is near of the path's inside, by either rule; curves flattened.
Path NearInside(const Path& path);

/// What is near of the path's line; curves flattened, figures open where they were cut.
Path NearLine(const Path& path);

}  // namespace quillo::host::emf
