#pragma once

#include <cstddef>

namespace quillo::harness {

/// From now on each block that the driver behind the interposer allocates from a heap ends at a
/// page that cannot be touched, so that the first byte read beyond it is noticed (and the first
/// written, at the latest when it is freed). Freed blocks cannot be touched either.
void GuardHeap();

/// A block of that kind of one's own, not zeroed; freed by FreeGuarded.
void* AllocateGuarded(size_t size);
void FreeGuarded(void* block);

/// Blocks that were not freed.
size_t GuardedBlocks();

}  // namespace quillo::harness
