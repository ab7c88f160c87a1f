#pragma once

#include <vector>

#include "host/engine/path.h"

namespace quillo::host::emf {

/// Rows of pixels that the edges of a path cross: what working out its inside costs. Curves count
/// as their control points.
double Crossings(const Path& path);

/// The path in parts of about `most` crossings each; a line that has more is cut at its corners, so
/// that it ends and begins there. The path itself where it has no more.
std::vector<Path> SplitLine(Path path, double most);

}  // namespace quillo::host::emf
