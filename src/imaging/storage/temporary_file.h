#pragma once

#include <cstdint>

#include "base/system_owners.h"

namespace quillo::imaging {

/// Makes a file of `size` zero bytes (not 0) in the thread's temporary directory, which deletes
/// itself when its last handle is closed. kSuccess, kOutOfMemory when it cannot be made, kFileError
/// when it cannot be extended.
int MakeTemporaryFile(uint64_t size, KernelHandle* file);

/// Read or write all of `size` bytes at `offset`; false when not all of them could be.
bool ReadAt(HANDLE file, uint64_t offset, void* data, uint32_t size);
bool WriteAt(HANDLE file, uint64_t offset, const void* data, uint32_t size);

}  // namespace quillo::imaging
