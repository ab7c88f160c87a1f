#pragma once

#include <cstdint>

// Ternary raster operations by their operation byte (the third of a code of 32 bits).
namespace quillo::host {

inline constexpr uint8_t kSourceCopy = 0xCC;
inline constexpr uint8_t kPatternCopy = 0xF0;
inline constexpr uint8_t kPatternInvert = 0x5A;

/// The quaternary operation of the same result with and without a mask.
constexpr uint16_t SameOperation(uint8_t rop3) { return static_cast<uint16_t>(rop3 << 8 | rop3); }

/// Whether the result of an operation depends on its source or its brush.
constexpr bool UsesSource(uint8_t rop3) { return ((rop3 >> 2 ^ rop3) & 0x33) != 0; }
constexpr bool UsesBrush(uint8_t rop3) { return ((rop3 >> 4 ^ rop3) & 0x0F) != 0; }

}  // namespace quillo::host
