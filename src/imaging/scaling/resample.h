#pragma once

#include <cstdint>

#include "base/bytes.h"
#include "imaging/pixels/geometry.h"
#include "imaging/pixels/row_format.h"
#include "imaging/scaling/scaling.h"

namespace quillo::imaging {

/// Piecewise cubic filters of the family that Mitchell and Netravali describe ("Reconstruction
/// Filters in Computer Graphics", 1988).
enum class CubicFilter {
  kMitchell,    // B = C = 1/3: for resampling; little blur, little ringing
  kCatmullRom,  // B = 0, C = 1/2: for enlarging; passes through the source pixels (Keys, 1981)
};

/// The filter's value at `distance`, in source pixels (or, when shrinking, in destination pixels).
double CubicWeight(CubicFilter filter, double distance);

/// Bytes of work space that Resample needs.
size_t ResampleWorkSize(const Geometry& source, const Geometry& destination);

/// Scales a bitmap with a separable filter, first along the rows, then along the columns. When
/// shrinking, the filter is widened to cover all source pixels; beyond the edges the edge pixels
/// repeat. Pixels with a palette are filtered as colours and go to the nearest entry.
///
/// Source and destination share `format`. `work` has ResampleWorkSize bytes, aligned for double.
/// Source rows may be fetched more than once. kSuccess, kFileError for a row that cannot be
/// fetched, or what stopped `store` or `progress`.
int Resample(Scaling scaling, CubicFilter filter, const RowFormat& format, MutableBytes work);

}  // namespace quillo::imaging
