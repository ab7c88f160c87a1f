#pragma once

#include "base/bytes.h"
#include "imaging/bitmap/bitmap_handle.h"

namespace quillo::imaging {

// Row access of allocated bitmaps, whatever their storage. Rows count in storage order from 0 and
// must be below the height. The caller holds a LockScope on the record, unless nobody else knows
// the record and its storage needs no lock.

/// The row's address when its bytes lie in memory as they are, else null (disk, compressed chunks,
/// or caller memory without an address).
std::byte* RowAddress(const BitmapHandle& record, uint32_t row);

/// Copies a row into `out` (bytes_per_line bytes). Fails with kFileError or kNoStorage.
int FetchRow(const BitmapHandle& record, uint32_t row, MutableBytes out);

/// Replaces a row by `data` (bytes_per_line bytes). Fails as FetchRow does, or with kOutOfMemory.
int StoreRow(const BitmapHandle& record, uint32_t row, Bytes data);

/// The row in place, or fetched into `scratch` (bytes_per_line bytes); null when it cannot be
/// read.
const std::byte* BorrowRow(const BitmapHandle& record, uint32_t row, MutableBytes scratch);

}  // namespace quillo::imaging
