#pragma once

#include "base/ddi.h"

#include <gtest/gtest.h>
#include <string>

#include "support/driver_job.h"
#include "support/watch.h"

namespace quillo::test {

/// A device of 600 x 300 dpi on a surface of 200 x 100 pixels, in a job that keeps the stream
/// unplayed.
class CaptureTest : public testing::Test, protected DriverJob {
 protected:
  CaptureTest();

  /// What was recorded since the last call, as text.
  std::string TakeRecords();

  /// Like TakeRecords, of one drawing call: the records between the bracketing ones, which must be
  /// there.
  std::string TakeDrawing();

 private:
  void SwallowStream();
};

/// For as long as it lives, some allocations from the process heap fail. One at a time.
class FailingAllocation {
 public:
  /// The one after `granted` successful ones fails; with `rest`, all that follow it too.
  explicit FailingAllocation(int granted, bool rest = false) : granted_(granted), rest_(rest) {}

 private:
  int granted_;
  bool rest_;
  WATCH(HeapAlloc)
  allocate_{[this](HANDLE heap, DWORD flags, SIZE_T bytes) -> void* {
    const int left = heap == GetProcessHeap() ? granted_-- : 1;
    const bool fails = left == 0 || (left < 0 && rest_);
    return fails ? nullptr : allocate_.CallOriginal(heap, flags, bytes);
  }};
};

}  // namespace quillo::test
