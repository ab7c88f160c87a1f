#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/module_instance.h"
#include "base/text.h"
#include "config/settings/printer_info.h"
#include "ui/document_modes.h"
#include "ui/papers.h"
#include "ui/printer_interface.h"
#include "ui/resource_ids.h"

// What the spooler asks by itself.
namespace quillo {

namespace {

bool Refuse(DWORD error) {
  SetLastError(error);
  return false;
}

/// Whether a paper is among those that the printer offers now.
bool Offers(HANDLE printer, int16_t paper) {
  const PrinterInfo<PRINTER_INFO_4W> info(printer, 4);
  bool found = false;
  OfferedPapers(info ? info->pPrinterName : nullptr).ForEach([&](const OfferedPaper& offered) {
    found = offered.number == paper;
    return !found;
  });
  return found;
}

/// Whether a device mode asks for a paper by its number.
bool NamesPaper(const DEVMODEW& mode) {
  return mode.dmSize >= offsetof(DEVMODEW, dmPaperLength) && (mode.dmFields & DM_PAPERSIZE) != 0 &&
         mode.dmPaperSize != DMPAPER_USER;
}

/// Copies as much of the text as fits, and its whole length.
void Explain(UINT text, DEVQUERYPRINT_INFO& query) {
  wchar_t reason[256] = {};
  LoadStringW(g_module_instance, text, reason, ARRAYSIZE(reason));
  query.cchNeeded = static_cast<DWORD>(lstrlenW(reason)) + 1;
  if (query.pszErrorStr != nullptr)
    CopyPadded(query.pszErrorStr, reason, std::min<size_t>(query.cchErrorStr, query.cchNeeded));
}

}  // namespace
}  // namespace quillo

extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) quillo::g_module_instance = instance;
  return TRUE;
}

/// There is one version of the device mode: every conversion leads to it. Never asks the spooler
/// for the printer's settings, since the spooler calls this to answer that.
BOOL WINAPI DrvConvertDevMode(LPWSTR name, DEVMODEW* in, DEVMODEW* out, LONG* needed, DWORD kind) {
  using namespace quillo;
  const bool converts = kind == kConvert || kind == kConvert351;
  if (needed == nullptr || (!converts && kind != kDefaultMode) || (converts && in == nullptr)) {
    return Refuse(ERROR_INVALID_PARAMETER);
  }
  constexpr LONG kSize = sizeof(DeviceMode);
  const LONG room = std::exchange(*needed, kSize);
  if (out == nullptr || room < kSize) return Refuse(ERROR_INSUFFICIENT_BUFFER);
  OpenPrintersForUse(name);
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, name);
  if (converts) TakeOver(mode, in);
  CopyOut(mode, out);
  return TRUE;
}

/// Holds a job whose paper the printer does not offer (any more): it would be printed on another.
BOOL WINAPI DevQueryPrintEx(quillo::DEVQUERYPRINT_INFO* query) {
  using namespace quillo;
  if (query == nullptr) return Refuse(ERROR_INVALID_PARAMETER);
  const DEVMODEW* mode = query->pDevMode;
  if (mode == nullptr || !NamesPaper(*mode) || Offers(query->hPrinter, mode->dmPaperSize))
    return TRUE;
  Explain(IDS_UNKNOWN_PAPER, *query);
  return FALSE;
}

/// The driver keeps nothing of its own for a printer or a connection to one.
BOOL WINAPI DrvPrinterEvent(LPWSTR /*name*/, INT /*event*/, DWORD /*flags*/, LPARAM /*parameter*/) {
  return TRUE;
}

}  // extern "C"
