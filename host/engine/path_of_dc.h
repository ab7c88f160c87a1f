#pragma once

#include "host/engine/path.h"

namespace quillo::host {

/// The finished path of a DC, its logical units as sixteenths of a pixel; empty when it has none.
/// Throws std::bad_alloc.
Path PathOf(HDC dc);

}  // namespace quillo::host
