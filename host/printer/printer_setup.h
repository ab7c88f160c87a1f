#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "host/printer/ppd.h"

namespace quillo::host {

inline constexpr wchar_t kPrinterName[] = L"VORNIX Quillo 6";
/// The driver's data file under Wine: the description that Wine's own printer driver reads.
inline constexpr wchar_t kDescriptionFile[] = L"quillo.ppd";

/// The folder of this program. Throws SystemFailure.
std::filesystem::path ProgramFolder();

/// Makes sure that the spooler knows the printer.
///
/// On Windows an installed printer is used unchanged; a missing one is an error, since the driver's
/// package installs it. Under Wine the printer is installed from this program's folder, or from
/// "bin" beside that of a test; Wine's own printer driver makes the reference DCs of page
/// metafiles, and for the life of this process they have `dpi` and know `user_sizes` by their paper
/// numbers. Throws SystemFailure.
void EnsurePrinter(const std::wstring& name, int dpi, const std::map<int, PaperSize>& user_sizes);

}  // namespace quillo::host
