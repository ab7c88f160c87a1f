#pragma once

#include "base/ddi.h"

#include <cstdint>

#include "host/cairo/cairo_owners.h"

namespace quillo::host::pdf {

/// Dots after which a hatch repeats itself, across and down.
constexpr double kHatchCell = 8;

/// An area of a hatch (below HS_DDI_MAX) as a drawing. Its unit is a dot, the width of the lines.
/// Colours are 0xAARRGGBB; AA is 0 or 255. Throws std::bad_alloc.
CairoSurface HatchDrawing(ULONG hatch, uint32_t gaps, uint32_t lines,
                          const cairo_rectangle_t& area);

}  // namespace quillo::host::pdf
