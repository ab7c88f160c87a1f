#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace quillo::imaging {

// Fast forms of row functions for machines with AVX2. They give what the plain forms give, for as
// many pixels from the left as whole vectors allow, and return that number. Nothing outside the
// rows is read or written.

/// Whether the functions below may be called.
bool HasAvx2();

/// Copies 32-bit pixels from `columns` (below 2^31) of `source`.
size_t GatherPixelsAvx2(const std::byte* source, std::span<const uint32_t> columns, std::byte* row);

/// PlanarRow420Plain.
size_t PlanarRow420Avx2(const std::byte* y, const std::byte* u, const std::byte* v, size_t width,
                        std::byte* rgb);

}  // namespace quillo::imaging
