#pragma once

#include <cstddef>

#include "base/bytes.h"

namespace quillo::imaging {

/// Rows of compressed storage are packed bytewise: a count byte n below 128 is followed by n + 1
/// bytes to copy, one above by a byte to repeat 257 - n times (the published PackBits coding).

/// The maximum bytes that a packed row of `size` bytes can take.
constexpr size_t PackedBound(size_t size) { return size + (size + 127) / 128; }

/// Packs `row` into `packed` (PackedBound(row.size()) bytes); returns the bytes used.
size_t PackRow(Bytes row, MutableBytes packed);

/// Unpacks into the whole of `row`; what `packed` does not hold becomes zero.
void UnpackRow(Bytes packed, MutableBytes row);

}  // namespace quillo::imaging
