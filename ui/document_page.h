#pragma once

#include "base/windows.h"

#include "config/device_mode/device_mode.h"

namespace quillo {

/// The page of a document's settings. Lives as long as the property sheet that shows it.
struct DocumentPage {
  const wchar_t* printer;  // null: no custom papers
  DeviceMode mode;         // shown; after the user confirms, what was chosen
  bool read_only;
  void (*confirmed)(DocumentPage& page);  // called when the user has confirmed
  void* context;                          // for `confirmed`
};

/// The dialog procedure of IDD_DOCUMENT. The lParam of the PROPSHEETPAGE is a DocumentPage.
INT_PTR CALLBACK DocumentPageProc(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam);

}  // namespace quillo
