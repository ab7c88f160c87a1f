#pragma once

#include <cstdint>
#include <span>

#include "imaging/scaling/scaling.h"

namespace quillo::imaging {

/// How the share of a destination pixel that 1-pixels of a 1-bit source cover decides its value.
enum class AreaRule {
  kMajority,  // 1-bit result: 1 when more than half is covered
  kAnySet,    // 1-bit result: 1 when anything is covered, so that 1-pixels survive
  kAllSet,    // 1-bit result: 1 when all is covered, so that 0-pixels survive
  kLevels,    // 8-bit result: the share, from 0 to 255
};

/// Scales a 1-bit bitmap by area averaging (box filter): every destination pixel is a rectangle of
/// the source, whose pixels count by the part of them that lies in it. Exact, in integers.
///
/// `sums` (destination.width) is work space. kSuccess, kFileError for a row that cannot be fetched,
/// or what stopped `store` or `progress`.
int ScaleByArea(Scaling scaling, AreaRule rule, std::span<uint64_t> sums);

}  // namespace quillo::imaging
