#pragma once

#include "base/windows.h"

#include <string_view>
#include <vector>

// Wine's metafile recorder drops some of what Windows' keeps: brush, dashes and joins of extended
// pens, miter limits, brush origins and colour adjustments. The functions here replace GDI's in the
// driver's imports and put the missing records into its page files.
namespace quillo::host {

/// The record types that GDI's recorder drops, found out by recording a small metafile. Empty on
/// Windows, and when that fails.
std::vector<DWORD> DroppedRecords();

/// The replacement for the GDI function `name` in a driver whose pages would lack the records
/// `dropped`; null where GDI's function is sufficient. It has the same signature. Only metafiles
/// that these functions create in files are completed, at the latest when CloseEnhMetaFile returns;
/// one that cannot be rewritten stays as it was recorded.
void* FindRecordingCall(std::string_view name, const std::vector<DWORD>& dropped);

}  // namespace quillo::host
