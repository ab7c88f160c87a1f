#pragma once

#include <cstdint>
#include <span>

#include "imaging/scaling/scaling.h"

namespace quillo::imaging {

/// Walks the source positions of nearest-neighbour scaling, in integer steps only: the whole and
/// the remainder of source / destination, the remainders accumulate until they make another step.
class NearestSteps {
 public:
  /// `destination` is not 0. Equal sizes have the step 0 and the size as remainder.
  constexpr NearestSteps(uint32_t source, uint32_t destination)
      : destination_(destination),
        quotient_(source == destination ? 0 : source / destination),
        remainder_(source == destination ? source : source % destination) {}

  [[nodiscard]] constexpr uint32_t Position() const { return position_; }

  constexpr void Advance() {
    position_ += quotient_;
    gathered_ += remainder_;
    if (gathered_ >= destination_) {
      gathered_ -= destination_;
      ++position_;
    }
  }

 private:
  uint32_t destination_;
  uint32_t quotient_;
  uint32_t remainder_;
  uint64_t gathered_ = 0;
  uint32_t position_ = 0;
};

/// Source column of every destination column.
void FillColumns(uint32_t source_width, std::span<uint32_t> columns);

/// Nearest neighbour of a whole bitmap; both have the same depth. Destination rows are written
/// where `place` says, or assembled and stored. `columns` (destination.width) is work space. Source
/// rows are fetched once, in rising order. kSuccess, kFileError for a row that cannot be fetched,
/// or what stopped `store` or `progress`.
int ResizeNearest(Scaling scaling, RowPlace place, std::span<uint32_t> columns);

}  // namespace quillo::imaging
