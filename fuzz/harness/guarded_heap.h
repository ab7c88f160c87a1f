#pragma once

#include <cstddef>

namespace quillo::harness {

/// Makes every later heap block of the interposed driver end at an inaccessible page: a read past
/// the end faults at once, a write at the latest when the block is freed. So does any access to a
/// freed block.
void GuardHeap();

/// A block of that kind of one's own, not zeroed; freed by FreeGuarded.
void* AllocateGuarded(size_t size);
void FreeGuarded(void* block);

/// Blocks that were not freed.
size_t GuardedBlocks();

}  // namespace quillo::harness
