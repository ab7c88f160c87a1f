#pragma once

#include "base/ddi.h"

#include <string>
#include <vector>

#include "host/engine/driver_functions.h"

namespace quillo::host {

/// A driver that writes down what it is asked for.
struct FakeDriver {
  FakeDriver();
  ~FakeDriver();

  DriverFunctions functions;
  std::vector<std::string> calls;  // one line each
  std::string refusing;            // the function that answers FALSE or null
  FLONG graphics_caps = 0;
  FLONG hooks = 0x105FB;  // of the surfaces that it enables
  SIZEL size{100, 80};
};

}  // namespace quillo::host
