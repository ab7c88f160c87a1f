#pragma once

#include "base/windows.h"

#include "base/gdi_owners.h"

namespace quillo {

/// A DC on the printer behind the spooler handle `printer`, with `settings` (null = the printer's
/// defaults). Empty when the spooler does not tell the printer's name or GDI makes no DC.
CreatedDc CreatePrinterDc(HANDLE printer, const DEVMODEW* settings);

}  // namespace quillo
