#pragma once

#include <cstdint>

namespace quillo::imaging {

/// Replaces the calling thread's display-mode flags (paint_method.h) within `mask` by those of
/// `values` and returns the flags before. Setting kModeResetTable anew makes the thread's display
/// table the identity.
uint32_t SetDisplayMode(uint32_t mask, uint32_t values);

}  // namespace quillo::imaging
