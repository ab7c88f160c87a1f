#pragma once

#include "base/windows.h"

#include "base/gdi_owners.h"

namespace quillo {

/// A DC on the printer of the spooler handle `printer`, with `settings` (null = the printer's
/// defaults). Empty when the spooler does not know the printer's name or GDI creates no DC.
CreatedDc CreatePrinterDc(HANDLE printer, const DEVMODEW* settings);

}  // namespace quillo
