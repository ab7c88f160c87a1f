#pragma once

#include <cstdint>

namespace quillo::imaging {

/// Replaces the calling thread's display-mode flags (paint_method.h) within `mask` by those of
/// `values`; gives the flags before. Setting 0x0004 anew makes the thread's display table the
/// identity.
uint32_t SetDisplayMode(uint32_t mask, uint32_t values);

}  // namespace quillo::imaging
