#pragma once

#include "base/ddi.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "host/engine/graphics.h"
#include "tests/host/engine/fake_driver.h"

namespace quillo::host {

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
  using Calls = std::vector<std::string>;

  FakeDriver driver_;
  DEVINFO info_{};
  std::unique_ptr<Surface> surface_;
};

}  // namespace quillo::host
