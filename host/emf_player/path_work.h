#pragma once

#include <vector>

#include "host/engine/path.h"

namespace quillo::host::emf {

/// How many rows of pixels the edges of a path cross: the cost of computing its inside. A curve
/// counts as the polygon of its control points.
double Crossings(const Path& path);

/// The path in parts of about `max` crossings each: figures that have more are cut at their
/// corners, where the parts then have ends. A path with no more than that comes back whole.
std::vector<Path> SplitLine(Path path, double max);

}  // namespace quillo::host::emf
