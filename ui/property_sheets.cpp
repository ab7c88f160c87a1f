#include <cstddef>

#include "base/module_instance.h"
#include "base/system_owners.h"
#include "config/settings/printer_info.h"
#include "ui/document_modes.h"
#include "ui/document_page.h"
#include "ui/printer_interface.h"
#include "ui/resource_ids.h"

// The property sheets of documents and of the printer, and device modes without one.
namespace quillo {

namespace {

constexpr LONG kDone = 1;
constexpr LONG kFailed = -1;

LONG Fail(DWORD error) {
  SetLastError(error);
  return kFailed;
}

/// The settings that a request begins with: the printer's, with the caller's taken over.
DeviceMode StartingMode(const DOCUMENTPROPERTYHEADER& request) {
  DeviceMode mode = DocumentDefaults(request.hPrinter, request.pszPrinterName);
  if ((request.fMode & DM_IN_BUFFER) != 0) TakeOver(mode, request.pdmIn);
  return mode;
}

bool WantsMode(const DOCUMENTPROPERTYHEADER& request) {
  return (request.fMode & DM_OUT_BUFFER) != 0 && request.pdmOut != nullptr;
}

LONG AnswerWithoutSheet(DOCUMENTPROPERTYHEADER* request) {
  if (request == nullptr) return Fail(ERROR_INVALID_PARAMETER);
  request->cbOut = sizeof(DeviceMode);
  if (!WantsMode(*request)) return sizeof(DeviceMode);
  CopyOut(StartingMode(*request), request->pdmOut);
  return kDone;
}

/// A property sheet's page of ours; `data` is what its dialog procedure gets.
bool AddPage(const PROPSHEETUI_INFO& sheet, int dialog, DLGPROC procedure, void* data) {
  PROPSHEETPAGEW page = {};
  page.dwSize = sizeof page;
  page.hInstance = g_module_instance;
  page.pszTemplate = MAKEINTRESOURCEW(dialog);
  page.pfnDlgProc = procedure;
  page.lParam = reinterpret_cast<LPARAM>(data);
  return sheet.pfnComPropSheet(sheet.hComPropSheet, CPSFUNC_ADD_PROPSHEETPAGEW,
                               reinterpret_cast<LPARAM>(&page), 0) > 0;
}

/// Names the sheet. `printer` may be null.
LONG FillHeader(PROPSHEETUI_INFO_HEADER* header, const wchar_t* printer, int title) {
  if (header == nullptr) return kFailed;
  header->Flags = PSUIHDRF_PROPTITLE | PSUIHDRF_NOAPPLYNOW;
  header->hInst = g_module_instance;
  header->pTitle = printer != nullptr ? const_cast<wchar_t*>(printer) : MAKEINTRESOURCEW(title);
  return kDone;
}

/// The document's sheet while it is open.
struct DocumentSheet {
  DocumentPage page;
  DOCUMENTPROPERTYHEADER* request;
  PROPSHEETUI_INFO* info;
};

/// Hands out the settings as soon as they are confirmed: not every caller asks for the result.
void HandOut(DocumentPage& page) {
  const auto& sheet = *static_cast<const DocumentSheet*>(page.context);
  if (WantsMode(*sheet.request)) CopyOut(page.mode, sheet.request->pdmOut);
  sheet.info->Result = CPSUI_OK;
}

LONG OpenDocumentSheet(PROPSHEETUI_INFO& info) {
  auto* request = reinterpret_cast<DOCUMENTPROPERTYHEADER*>(info.lParamInit);
  if (request == nullptr) return Fail(ERROR_INVALID_PARAMETER);
  request->cbOut = sizeof(DeviceMode);
  info.Result = CPSUI_CANCEL;
  HeapBlock block(sizeof(DocumentSheet));
  if (!block) return Fail(ERROR_NOT_ENOUGH_MEMORY);
  auto* sheet = block.As<DocumentSheet>();
  sheet->page = {request->pszPrinterName, StartingMode(*request),
                 (request->fMode & kNoPermission) != 0, HandOut, sheet};
  sheet->request = request;
  sheet->info = &info;
  if (!AddPage(info, IDD_DOCUMENT, DocumentPageProc, &sheet->page)) return kFailed;
  info.UserData = reinterpret_cast<ULONG_PTR>(block.Detach());
  return kDone;
}

LONG CloseDocumentSheet(PROPSHEETUI_INFO& info) {
  const HeapBlock sheet = HeapBlock::Adopt(reinterpret_cast<void*>(info.UserData));
  info.UserData = 0;
  return kDone;
}

/// What the sheet's owner makes of it.
LONG SetResult(PROPSHEETUI_INFO& info, const SETRESULT_INFO* result) {
  if (result == nullptr) return kFailed;
  info.Result = result->Result;
  return kDone;
}

INT_PTR CALLBACK PrinterPageProc(HWND, UINT message, WPARAM, LPARAM) {
  return message == WM_INITDIALOG ? TRUE : FALSE;
}

}  // namespace
}  // namespace quillo

extern "C" {

LONG WINAPI DrvDocumentPropertySheets(PPROPSHEETUI_INFO info, LPARAM parameter) {
  using namespace quillo;
  if (info == nullptr) {
    return AnswerWithoutSheet(reinterpret_cast<DOCUMENTPROPERTYHEADER*>(parameter));
  }
  const auto* request = reinterpret_cast<const DOCUMENTPROPERTYHEADER*>(info->lParamInit);
  switch (info->Reason) {
    case PROPSHEETUI_REASON_INIT:
      return OpenDocumentSheet(*info);
    case PROPSHEETUI_REASON_GET_INFO_HEADER:
      return FillHeader(reinterpret_cast<PROPSHEETUI_INFO_HEADER*>(parameter),
                        request != nullptr ? request->pszPrinterName : nullptr, IDS_DOCUMENT_TITLE);
    case PROPSHEETUI_REASON_SET_RESULT:
      return SetResult(*info, reinterpret_cast<const SETRESULT_INFO*>(parameter));
    case PROPSHEETUI_REASON_DESTROY:
      return CloseDocumentSheet(*info);
    default:
      return kFailed;
  }
}

LONG WINAPI DrvDevicePropertySheets(PPROPSHEETUI_INFO info, LPARAM parameter) {
  using namespace quillo;
  if (info == nullptr) return Fail(ERROR_INVALID_PARAMETER);
  const auto* request = reinterpret_cast<const DEVICEPROPERTYHEADER*>(info->lParamInit);
  switch (info->Reason) {
    case PROPSHEETUI_REASON_INIT:
      info->Result = CPSUI_CANCEL;
      return AddPage(*info, IDD_PRINTER, PrinterPageProc, nullptr) ? kDone : kFailed;
    case PROPSHEETUI_REASON_GET_INFO_HEADER:
      return FillHeader(reinterpret_cast<PROPSHEETUI_INFO_HEADER*>(parameter),
                        request != nullptr ? request->pszPrinterName : nullptr, IDS_PRINTER_TITLE);
    case PROPSHEETUI_REASON_SET_RESULT:
      return SetResult(*info, reinterpret_cast<const SETRESULT_INFO*>(parameter));
    case PROPSHEETUI_REASON_DESTROY:
      return kDone;
    default:
      return kFailed;
  }
}

}  // extern "C"
