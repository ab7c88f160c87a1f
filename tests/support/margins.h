#pragma once

#include <cstring>

#include "config/device_mode/device_mode.h"

namespace quillo::test {

/// Gives a device mode a left and a top margin.
inline void SetMargins(DeviceMode& mode, float left_inches, float top_inches) {
  const auto store = [&mode](size_t offset, auto value) {
    std::memcpy(reinterpret_cast<std::byte*>(&mode) + offset, &value, sizeof value);
  };
  store(492, uint32_t{1});
  store(1020, top_inches);
  store(1028, left_inches);
  for (const size_t divisor : {1024u, 1032u, 1040u, 1048u}) store(divisor, 1.0f);
}

}  // namespace quillo::test
