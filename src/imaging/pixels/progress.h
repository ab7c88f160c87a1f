#pragma once

#include <cstdint>

#include "imaging/pixels/result.h"

namespace quillo::imaging {

/// Receives the progress of an operation and the user value. Any result other than kSuccess stops
/// the operation and becomes its result.
using StatusCallback = int (*)(int percent, void* user);

/// Reports to a callback how many of the rows of an operation are done, in percent: once with 0
/// before the first row, and after every row whose percentage moved. The percentage of a row is the
/// sum of whole steps of 100 / rows and of their remainders.
class Progress {
 public:
  /// `callback` may be null; `rows` is not 0.
  Progress(StatusCallback callback, void* user, uint32_t rows)
      : callback_(callback), user_(user), rows_(rows) {}

  /// Before the first row. kSuccess, or the code with which the operation has to stop.
  int Start() { return Report(); }

  /// After a row. kSuccess, or the code with which the operation has to stop.
  int RowDone() {
    const int before = percent_;
    percent_ += static_cast<int>(100 / rows_);
    remainder_ += 100 % rows_;
    if (remainder_ >= rows_) {
      remainder_ -= rows_;
      ++percent_;
    }
    return percent_ != before ? Report() : kSuccess;
  }

 private:
  int Report() { return callback_ != nullptr ? callback_(percent_, user_) : kSuccess; }

  StatusCallback callback_;
  void* user_;
  uint32_t rows_;
  uint32_t remainder_ = 0;
  int percent_ = 0;
};

}  // namespace quillo::imaging
