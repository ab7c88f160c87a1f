#include "config/settings/printer_dc.h"

#include "config/settings/printer_info.h"

namespace quillo {

CreatedDc CreatePrinterDc(HANDLE printer, const DEVMODEW* settings) {
  const PrinterInfo<PRINTER_INFO_4W> info(printer, 4);
  if (!info) return CreatedDc();
  return CreatedDc(CreateDCW(nullptr, info->pPrinterName, nullptr, settings));
}

}  // namespace quillo
