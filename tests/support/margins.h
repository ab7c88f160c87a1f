#pragma once

#include "config/device_mode/device_mode.h"

namespace quillo::test {

/// Gives a device mode a left and a top margin.
inline void SetMargins(DeviceMode& mode, float left_inches, float top_inches) {
  mode.own.margins_given = 1;
  mode.own.margin_unit = kMarginInches;
  mode.own.top = {top_inches, 1};
  mode.own.left = {left_inches, 1};
  mode.own.right = mode.own.bottom = {0, 1};
}

}  // namespace quillo::test
