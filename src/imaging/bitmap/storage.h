#pragma once

#include "imaging/bitmap/bitmap_handle.h"
#include "imaging/bitmap/storage_choice.h"

namespace quillo::imaging {

/// Gives an initialised record pixel storage by `memory_type`, its lookup tables and its lock. The
/// pixels are zero; caller memory has no address yet.
/// Fails with -11, -13, -5 or -1, and then leaves the record without storage.
int AllocateStorage(BitmapHandle& record, uint32_t memory_type);

/// Releases storage, lookup tables and lock, and clears the storage flags.
void ReleaseStorage(BitmapHandle& record);

/// Initialises `fresh` as a bitmap like `model` (form, depth, colour order, row order, palette,
/// levels) of another size, with storage of the thread's default memory type. After a failure it is
/// to be freed all the same.
int AllocateLike(const BitmapHandle& model, uint32_t width, uint32_t height, BitmapHandle* fresh);

/// Exchanges the pixels, sizes and row orders of two records of one form; all else stays.
void ExchangePixels(BitmapHandle& a, BitmapHandle& b);

/// Moves global memory or compressed chunks into a memory section; other storage stays. On failure
/// the record is unchanged.
int MoveToSection(BitmapHandle& record);

}  // namespace quillo::imaging
