#pragma once

#include <map>
#include <string>

#include "host/printer/ppd.h"

namespace quillo::host {

inline constexpr wchar_t kPrinterName[] = L"VORNIX Quillo 6";

/// Makes sure that the spooler knows the printer.
///
/// On Windows an installed printer is used unchanged; a missing one is an error, since the driver's
/// package installs it. Under Wine the printer is registered on Wine's own printer driver,
/// which makes the reference DCs of page metafiles; for the life of this process they have `dpi`
/// and know `user_sizes` by their paper numbers. Throws SystemFailure.
void EnsurePrinter(const std::wstring& name, int dpi, const std::map<int, PaperSize>& user_sizes);

}  // namespace quillo::host
