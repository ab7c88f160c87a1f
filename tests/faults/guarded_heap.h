#pragma once

#include "base/windows.h"

namespace quillo::faults {

// Stand-ins for the heap functions: each block ends at a page that cannot be touched, so that the
// first byte read or written beyond it (or up to 15 bytes further, written) is noticed. Freed
// blocks cannot be touched either.
void* WINAPI GuardedAlloc(HANDLE heap, DWORD flags, SIZE_T size);
void* WINAPI GuardedReAlloc(HANDLE heap, DWORD flags, void* block, SIZE_T size);
BOOL WINAPI GuardedFree(HANDLE heap, DWORD flags, void* block);
/// Frees the blocks of the heap, too.
BOOL WINAPI GuardedDestroy(HANDLE heap);

/// Blocks that were not freed.
size_t GuardedBlocks();

}  // namespace quillo::faults
