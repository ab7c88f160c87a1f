#pragma once

#include <cstdint>

#include "base/bytes.h"
#include "imaging/dib/dib_header.h"
#include "imaging/pixels/row_access.h"

namespace quillo::imaging {

/// Whether ConvertDibRows needs a scratch row.
constexpr bool NeedsScratchRow(DibLayout layout) {
  return layout != DibLayout::kRows && layout != DibLayout::kJpeg;
}

/// Turns the bits of a DIB into rows of `dib.bits_per_pixel`, from the top of the source buffer to
/// its end, as rows 0, 1, 2 ... Rows that a run-length stream leaves empty are not stored.
///
/// `scratch` is a zeroed row of the result (empty when none is needed). kInvalidArgument when
/// `bits` is shorter than SourceSize, with nothing stored; kUnsupportedFormat for JPEG; or what
/// stopped `store`.
int ConvertDibRows(const DibDescription& dib, Bytes bits, MutableBytes scratch, RowStore store);

}  // namespace quillo::imaging
