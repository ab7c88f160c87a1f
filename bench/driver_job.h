#pragma once

#include "base/ddi.h"

#include "driver/device.h"
#include "job/job.h"

namespace quillo::bench {

/// A device of 600 dpi with a job, and a surface on it: all that a drawing hook asks for.
class DriverJob {
 public:
  DriverJob() {
    device_.signature = device_.closing_signature = kDeviceSignature;
    device_.resolution = {600, 600};
    device_.job = &job_;
    surface_.dhpdev = reinterpret_cast<DHPDEV>(&device_);
  }

  /// The surface, whose drawing goes to this page.
  SURFOBJ* SurfaceOn(HDC page) {
    job_.playback.page_dc = page;
    return &surface_;
  }

 private:
  CQloPrinter job_{HeapCreate(0, 0, 0), nullptr, 1};
  DEVICE_PDEV device_ = {};
  SURFOBJ surface_ = {};
};

}  // namespace quillo::bench
