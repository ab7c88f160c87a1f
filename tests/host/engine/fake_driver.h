#pragma once

#include "base/ddi.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "host/engine/driver_functions.h"
#include "host/engine/graphics.h"

namespace quillo::host {

/// A driver that notes its calls.
struct FakeDriver {
  FakeDriver();
  ~FakeDriver();

  DriverFunctions functions;
  std::vector<std::string> calls;  // one line each
  std::string refusing;            // the function that returns FALSE or null
  FLONG graphics_caps = 0;
  FLONG hooks = 0x105FB;  // of its surfaces
  SIZEL size{100, 80};
};

/// A page of 100 by 80 pixels on a fake driver.
class GraphicsTest : public testing::Test {
 protected:
  GraphicsTest() : surface_(Surface::Allocate({100, 80}, BMF_24BPP, false, 0)) {
    surface_->hooks = driver_.hooks;
  }
  Graphics Page() {
    info_.flGraphicsCaps = driver_.graphics_caps;
    return Graphics(driver_.functions, info_, *surface_);
  }

  FakeDriver driver_;
  DEVINFO info_{};
  std::unique_ptr<Surface> surface_;
};

}  // namespace quillo::host
