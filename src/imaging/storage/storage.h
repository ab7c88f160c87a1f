#pragma once

#include "imaging/bitmap/bitmap_handle.h"
#include "imaging/bitmap/memory_type.h"

namespace quillo::imaging {

// Entries of a record's lookup tables.
constexpr size_t kLevels8 = 256;
constexpr size_t kLevels16 = 65536;

/// Gives an initialised record pixel storage by `memory_type`, its lookup tables and its lock. The
/// pixels are zero; caller memory has no address yet.
/// Fails with kEmptyData, kInvalidArgument (not an IsMemoryType), kFileError or kOutOfMemory, and
/// then leaves the record without storage.
int AllocateStorage(BitmapHandle& record, uint32_t memory_type);

/// Releases storage, lookup tables and lock, and clears the storage flags.
void ReleaseStorage(BitmapHandle& record);

/// Exchanges the pixels, sizes and row orders of two records of one form; all else stays.
void ExchangePixels(BitmapHandle& a, BitmapHandle& b);

/// Moves global memory or compressed chunks into a memory section; other storage stays. On failure
/// (kOutOfMemory) the record is unchanged.
int MoveToSection(BitmapHandle& record);

}  // namespace quillo::imaging
