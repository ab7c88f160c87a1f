#include "config/printer_dc.h"

#include <winspool.h>

#include "base/kernel_owners.h"

namespace quillo {
namespace {

// The spooler's name and attributes of the printer; empty on failure.
HeapBlock QueryPrinter(HANDLE printer) {
  DWORD needed = 0;
  GetPrinterW(printer, 4, nullptr, 0, &needed);
  if (needed < sizeof(PRINTER_INFO_4W)) return HeapBlock();
  HeapBlock info(needed);
  if (!info || !GetPrinterW(printer, 4, info.As<BYTE>(), needed, &needed)) return HeapBlock();
  return info;
}

}  // namespace

CreatedDc CreatePrinterDc(HANDLE printer, const DEVMODEW* settings) {
  const HeapBlock info = QueryPrinter(printer);
  if (!info) return CreatedDc();
  return CreatedDc(CreateDCW(nullptr, info.As<PRINTER_INFO_4W>()->pPrinterName, nullptr, settings));
}

}  // namespace quillo
