#pragma once

#include "base/ddi.h"

#include <string>
#include <vector>

#include "host/engine/driver_functions.h"

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

}  // namespace quillo::host
