#pragma once

#include <cstddef>
#include <cstdint>

#include "base/bytes.h"
#include "imaging/pixels/function_ref.h"

// How pure code reaches the rows of a bitmap whose storage it does not know.
namespace quillo::imaging {

/// Takes a row of a bitmap: its number in storage order, its bytes. Any result but kSuccess stops
/// the operation.
using RowStore = FunctionRef<int(uint32_t row, Bytes data)>;

/// Returns a source row (all of its bytes), or null when it cannot be read.
using RowFetch = FunctionRef<const std::byte*(uint32_t row)>;

/// Returns the address of a destination row to be written in place, or null for a row that has to
/// be stored.
using RowPlace = FunctionRef<std::byte*(uint32_t row)>;

}  // namespace quillo::imaging
