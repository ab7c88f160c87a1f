#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace quillo::imaging {

/// Whether the function below may be called.
bool HasAvx2();

/// Copies 32-bit pixels from `columns` (below 2^31) of `source`, as many from the left as whole
/// vectors allow, and returns their number. Nothing outside the rows is read or written.
size_t GatherPixelsAvx2(const std::byte* source, std::span<const uint32_t> columns, std::byte* row);

}  // namespace quillo::imaging
