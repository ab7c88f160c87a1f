#pragma once

// The one door to the printer interface: what the spooler and GDI ask of a configuration DLL.
#include "base/windows.h"

#include <prsht.h>
#include <winspool.h>
// winddiui.h needs what comes before it.
#include <winddiui.h>

// What mingw-w64's header lacks, under its documented names.
namespace quillo {

/// What DrvDocumentPropertySheets is asked for.
struct DOCUMENTPROPERTYHEADER {
  WORD cbSize;
  WORD Reserved;
  HANDLE hPrinter;
  LPWSTR pszPrinterName;
  DEVMODEW* pdmIn;   // with DM_IN_BUFFER
  DEVMODEW* pdmOut;  // with DM_OUT_BUFFER; takes sizeof(DeviceMode)
  DWORD cbOut;       // out: bytes of a device mode. Callers leave anything in it.
  DWORD fMode;       // DM_*; 0 asks for the size
};

/// What DrvDevicePropertySheets is asked for.
struct DEVICEPROPERTYHEADER {
  WORD cbSize;
  WORD Flags;
  HANDLE hPrinter;
  LPWSTR pszPrinterName;
};

/// What DevQueryPrintEx is asked for.
struct DEVQUERYPRINT_INFO {
  WORD cbSize;
  WORD Level;
  HANDLE hPrinter;
  DEVMODEW* pDevMode;
  LPWSTR pszErrorStr;
  DWORD cchErrorStr;
  DWORD cchNeeded;  // out: characters of the whole text with its terminator
};

inline constexpr DWORD kNoPermission = 0x20;  // DM_NOPERMISSION

/// How DrvConvertDevMode is to convert.
enum ConvertMode : DWORD {
  kConvert = 1,      // CDM_CONVERT
  kConvert351 = 2,   // CDM_CONVERT351
  kDefaultMode = 3,  // CDM_DRIVER_DEFAULT
};

}  // namespace quillo

extern "C" {
LONG WINAPI DrvDocumentPropertySheets(PPROPSHEETUI_INFO info, LPARAM parameter);
LONG WINAPI DrvDevicePropertySheets(PPROPSHEETUI_INFO info, LPARAM parameter);
DWORD WINAPI DrvDeviceCapabilities(HANDLE printer, PWSTR name, WORD capability, PVOID output,
                                   DEVMODEW* mode);
DWORD WINAPI DrvSplDeviceCaps(HANDLE printer, PWSTR name, WORD capability, PVOID output,
                              DWORD characters, DEVMODEW* mode);
BOOL WINAPI DrvConvertDevMode(LPWSTR name, DEVMODEW* in, DEVMODEW* out, LONG* needed, DWORD kind);
BOOL WINAPI DevQueryPrintEx(quillo::DEVQUERYPRINT_INFO* query);
}
