#pragma once

#include "base/bytes.h"
#include "imaging/pixels/geometry.h"
#include "imaging/pixels/progress.h"
#include "imaging/pixels/row_access.h"

namespace quillo::imaging {

/// A picture that goes row by row into another size: what every scaler takes. The functions that
/// `fetch` and `store` refer to outlive it.
struct Scaling {
  Geometry source;       // not empty
  Geometry destination;  // not empty
  RowFetch fetch;        // rows of the source
  RowStore store;        // rows of the destination, in rising order
  MutableBytes row;      // work space: a row of the destination, zeroed
  Progress progress;     // of the destination's rows
};

}  // namespace quillo::imaging
