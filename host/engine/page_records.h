#pragma once

#include "base/windows.h"

#include <string_view>
#include <vector>

// Wine's recorder of metafiles drops some of what Windows' keeps: brush, dashes and joins of
// extended pens, miter limits, brush origins and colour adjustments. Calls of this process's own
// stand in for those of the driver and put the missing records into its page files.
namespace quillo::host {

/// The record types that GDI's recorder drops, asked by a small metafile; empty on Windows, or when
/// it cannot be asked.
std::vector<DWORD> DroppedRecords();

/// The call that stands in for the GDI import `name` of a driver whose pages would lack the records
/// `dropped`; null where GDI's own will do. The calls have GDI's own signatures. Only metafiles
/// made in files by these calls are completed, at the latest when CloseEnhMetaFile returns; one
/// that cannot be rewritten stays as it was recorded.
void* FindRecordingCall(std::string_view name, const std::vector<DWORD>& dropped);

}  // namespace quillo::host
