#pragma once

#include <cstdint>

namespace quillo::records {

/// The ternary raster operation code of the foreground operation (low byte) of a ROP4.
///
/// The codes are those that the GDI documentation publishes ("Ternary Raster Operations"). Bits 16
/// to 23 repeat the operation byte, the truth table of the operation over pattern, source and
/// destination; the low word spells the operation in reverse Polish notation.
uint32_t TernaryRop(uint32_t rop4);

}  // namespace quillo::records
