#pragma once

#include "base/ddi.h"

#include <vector>

#include "base/gdi_owners.h"
#include "host/engine/path.h"

namespace quillo::host {

using Polygon = std::vector<POINTFIX>;  // closed; the last point is not the first again

/// The figures of a path as polygons, curves flattened, open figures closed.
std::vector<Polygon> ToPolygons(const Path& path);
Path ToPath(const std::vector<Polygon>& polygons);

/// The parts of the polygons inside a rectangle (Sutherland and Hodgman's algorithm). Parts stay
/// connected along the border, which does not change the fill under either rule.
std::vector<Polygon> ClipPolygons(const std::vector<Polygon>& polygons, const RECTFX& rect);

/// The pixels inside the polygons, points rounded to whole pixels. Throws std::bad_alloc.
Region FillPolygons(const std::vector<Polygon>& polygons, FillMode mode);

/// A region's rectangles, band by band from the top, each band from the left. Throws
/// std::bad_alloc.
std::vector<RECT> RectanglesOf(HRGN region);

/// The border of a region as polygons whose alternate fill is the region. Steps within a pixel of a
/// straight line become that line, so that a slanted border takes two points instead of two for
/// each row. Throws std::bad_alloc.
std::vector<Polygon> OutlineRegion(HRGN region);

}  // namespace quillo::host
