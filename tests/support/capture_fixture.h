#pragma once

#include "base/ddi.h"

#include <gtest/gtest.h>
#include <string>

#include "support/driver_job.h"
#include "support/import_patch.h"

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
  explicit FailingAllocation(int granted, bool rest = false) {
    granted_ = granted;
    rest_ = rest;
  }

 private:
  static void* WINAPI Allocate(HANDLE heap, DWORD flags, SIZE_T bytes);

  static inline int granted_ = 0;
  static inline bool rest_ = false;
  ImportPatch patch_{"HeapAlloc", &Allocate};
};

}  // namespace quillo::test
