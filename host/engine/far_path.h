#pragma once

#include "host/engine/path.h"

namespace quillo::host {

// Paths that lead far beyond every sheet cost time and memory for each of their rows. Only their
// part near the sheet is drawn.

/// Whether the path leaves the space around the page that can matter.
bool LeadsFar(const Path& path);

/// The near part of the path's inside, under either fill rule; curves flattened. A path that does
/// not lead far stays as it is.
Path NearInside(const Path& path);

/// The near part of the path's line; curves flattened, figures open where they were cut. A path
/// that does not lead far stays as it is.
Path NearLine(const Path& path);

}  // namespace quillo::host
