#pragma once

#include "base/windows.h"

#include "base/com_owners.h"

namespace quillo {

/// Writes a compound file with one stream. The open storage goes to the caller, who releases it
/// before others can read the file. On failure the storage is empty, and a file that it made or
/// emptied is gone.
HRESULT WriteCompoundFile(const wchar_t* path, const wchar_t* stream_name, const void* data,
                          ULONG size, ComPtr<IStorage>& storage);

}  // namespace quillo
