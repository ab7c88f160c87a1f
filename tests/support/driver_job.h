#pragma once

#include "base/ddi.h"

#include <memory>

#include "driver/device/device.h"
#include "job/job.h"

namespace quillo::test {

/// A device with a job, and a surface on it: all that a drawing hook asks for.
class DriverJob {
 public:
  explicit DriverJob(SIZEL size = {}, Resolution resolution = {600, 600}) {
    device_.signature = device_.closing_signature = kDeviceSignature;
    device_.resolution = resolution;
    device_.job = &job_;
    surface_.dhpdev = reinterpret_cast<DHPDEV>(&device_);
    surface_.sizlBitmap = size;
  }
  DriverJob(const DriverJob&) = delete;
  DriverJob& operator=(const DriverJob&) = delete;

  /// The surface, whose drawing goes to this page.
  SURFOBJ* SurfaceOn(HDC page) {
    job_.playback.page_dc = page;
    return &surface_;
  }

 private:
  struct HeapDeleter {
    void operator()(HANDLE heap) const { HeapDestroy(heap); }
  };
  std::unique_ptr<void, HeapDeleter> heap_{HeapCreate(0, 0, 0)};

 protected:
  DEVICE_PDEV device_ = {};
  SURFOBJ surface_ = {};  // of the device
  CQloPrinter job_{heap_.get(), /*job_printer=*/nullptr, /*id=*/1};
};

}  // namespace quillo::test
