#pragma once

#include "base/bytes.h"
#include "imaging/bitmap/bitmap_handle.h"

namespace quillo::imaging {

// Row access of allocated bitmaps, whatever their storage. Rows count in storage order from 0 and
// are the caller's to keep below the height. The caller holds a LockScope on the record, unless
// nobody else knows the record and its storage needs no lock.

/// The row's address when its bytes lie plainly in memory, else null (disk, compressed chunks, or
/// caller memory without an address).
std::byte* RowAddress(const BitmapHandle& record, uint32_t row);

/// Copies a row into `out` (bytes_per_line bytes).
int FetchRow(const BitmapHandle& record, uint32_t row, MutableBytes out);

/// Replaces a row by `data` (bytes_per_line bytes).
int StoreRow(const BitmapHandle& record, uint32_t row, Bytes data);

/// The row where it lies, or fetched into `scratch` (bytes_per_line bytes); null when it cannot be
/// read.
const std::byte* BorrowRow(const BitmapHandle& record, uint32_t row, MutableBytes scratch);

}  // namespace quillo::imaging
