#include "ui/document_page.h"

#include <cstdlib>
#include <cwchar>
#include <prsht.h>

#include "base/module_instance.h"
#include "config/platform/message_box.h"
#include "ui/document_modes.h"
#include "ui/papers.h"
#include "ui/print_qualities.h"
#include "ui/resource_ids.h"

namespace quillo {

namespace {

constexpr int kControls[] = {IDC_PAPER,    IDC_WIDTH,     IDC_HEIGHT,
                             IDC_PORTRAIT, IDC_LANDSCAPE, IDC_QUALITY};
constexpr int kSizeControls[] = {IDC_WIDTH_LABEL, IDC_WIDTH, IDC_HEIGHT_LABEL, IDC_HEIGHT};

using ShortText = wchar_t[64];

/// Adds an entry to a combo box; chooses it when its number is the one in force.
void AddChoice(HWND dialog, int control, const wchar_t* text, int number, int chosen) {
  const LRESULT item =
      SendDlgItemMessageW(dialog, control, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
  if (item < 0) return;  // memory is short
  SendDlgItemMessageW(dialog, control, CB_SETITEMDATA, static_cast<WPARAM>(item), number);
  if (number == chosen) {
    SendDlgItemMessageW(dialog, control, CB_SETCURSEL, static_cast<WPARAM>(item), 0);
  }
}

/// The number of the chosen entry; `otherwise` when none is.
int16_t Chosen(HWND dialog, int control, int16_t otherwise) {
  const LRESULT item = SendDlgItemMessageW(dialog, control, CB_GETCURSEL, 0, 0);
  if (item < 0) return otherwise;
  return static_cast<int16_t>(
      SendDlgItemMessageW(dialog, control, CB_GETITEMDATA, static_cast<WPARAM>(item), 0));
}

/// "215.9", with the user's decimal sign.
void ShowTenths(HWND dialog, int control, int tenths) {
  wchar_t sign[4] = L".";
  GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_SDECIMAL, sign, ARRAYSIZE(sign));
  ShortText text;
  wsprintfW(text, tenths % 10 != 0 ? L"%d%s%d" : L"%d", tenths / 10, sign, tenths % 10);
  SetDlgItemTextW(dialog, control, text);
}

/// A side in tenths of a millimetre; 0 for anything that is no side. Takes a point and a comma.
int16_t ReadTenths(HWND dialog, int control) {
  ShortText text = {};
  GetDlgItemTextW(dialog, control, text, ARRAYSIZE(text));
  for (wchar_t& character : text) {
    if (character == L',') character = L'.';
  }
  wchar_t* end = nullptr;
  const double tenths = std::wcstod(text, &end) * 10 + 0.5;
  while (*end == L' ') ++end;
  if (end == text || *end != L'\0' || !(tenths >= kMinSide && tenths < kMaxSide + 1.0)) return 0;
  return static_cast<int16_t>(tenths);
}

void EnableSize(HWND dialog, const DocumentPage& page) {
  const bool own_size = Chosen(dialog, IDC_PAPER, DMPAPER_LETTER) == DMPAPER_USER;
  for (const int control : kSizeControls) {
    EnableWindow(GetDlgItem(dialog, control), own_size && !page.read_only);
  }
}

/// Shows the size of the chosen paper. That of one's own is kept as it was typed.
void ShowSize(HWND dialog, const DocumentPage& page) {
  const int16_t number = Chosen(dialog, IDC_PAPER, DMPAPER_LETTER);
  OfferedPapers(page.printer).ForEach([&](const OfferedPaper& paper) {
    if (paper.number != number) return true;
    ShowTenths(dialog, IDC_WIDTH, paper.size.width);
    ShowTenths(dialog, IDC_HEIGHT, paper.size.height);
    return false;
  });
  EnableSize(dialog, page);
}

void ShowQualities(HWND dialog, int dpi) {
  bool known = false;
  ShortText name, text;
  for (const PrintQuality& quality : kPrintQualities) {
    LoadStringW(g_module_instance, quality.name, name, ARRAYSIZE(name));
    wsprintfW(text, name, quality.dpi);
    AddChoice(dialog, IDC_QUALITY, text, quality.dpi, dpi);
    known = known || quality.dpi == dpi;
  }
  if (known) return;
  LoadStringW(g_module_instance, IDS_QUALITY_OTHER, name, ARRAYSIZE(name));
  wsprintfW(text, name, dpi);
  AddChoice(dialog, IDC_QUALITY, text, dpi, dpi);
}

void Show(HWND dialog, const DocumentPage& page) {
  const DEVMODEW& mode = page.mode.pub;
  OfferedPapers(page.printer).ForEach([&](const OfferedPaper& paper) {
    AddChoice(dialog, IDC_PAPER, paper.name, paper.number, mode.dmPaperSize);
    return true;
  });
  ShortText own_size;
  LoadStringW(g_module_instance, IDS_OWN_SIZE, own_size, ARRAYSIZE(own_size));
  AddChoice(dialog, IDC_PAPER, own_size, DMPAPER_USER, mode.dmPaperSize);
  ShowTenths(dialog, IDC_WIDTH, mode.dmPaperWidth);
  ShowTenths(dialog, IDC_HEIGHT, mode.dmPaperLength);
  ShowSize(dialog, page);
  CheckRadioButton(dialog, IDC_PORTRAIT, IDC_LANDSCAPE,
                   mode.dmOrientation == DMORIENT_LANDSCAPE ? IDC_LANDSCAPE : IDC_PORTRAIT);
  ShowQualities(dialog, ResolutionOf(mode));
  if (!page.read_only) return;
  for (const int control : kControls) EnableWindow(GetDlgItem(dialog, control), FALSE);
}

/// Complains about a side that is none, and puts the user there.
bool CheckSide(HWND dialog, int control, int16_t& side) {
  side = ReadTenths(dialog, control);
  if (side != 0) return true;
  ShowResourceMessage(g_module_instance, IDS_WRONG_SIZE, IDS_DOCUMENT_TITLE, MB_ICONWARNING);
  SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog, control)), TRUE);
  return false;
}

/// Takes over what the controls say; false when the user has to correct something.
bool Confirm(HWND dialog, DocumentPage& page) {
  if (page.read_only) return true;
  DeviceMode chosen = page.mode;
  DEVMODEW& mode = chosen.pub;
  mode.dmPaperSize = Chosen(dialog, IDC_PAPER, mode.dmPaperSize);
  if (mode.dmPaperSize == DMPAPER_USER && (!CheckSide(dialog, IDC_WIDTH, mode.dmPaperWidth) ||
                                           !CheckSide(dialog, IDC_HEIGHT, mode.dmPaperLength))) {
    return false;
  }
  mode.dmOrientation = IsDlgButtonChecked(dialog, IDC_LANDSCAPE) == BST_CHECKED ? DMORIENT_LANDSCAPE
                                                                                : DMORIENT_PORTRAIT;
  const auto dpi = static_cast<int16_t>(ResolutionOf(mode));
  if (const int16_t quality = Chosen(dialog, IDC_QUALITY, dpi); quality != dpi) {
    mode.dmPrintQuality = mode.dmYResolution = quality;
  }
  TakeOver(page.mode, &mode);
  page.confirmed(page);
  return true;
}

}  // namespace

INT_PTR CALLBACK DocumentPageProc(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_INITDIALOG) {
    const LPARAM page = reinterpret_cast<const PROPSHEETPAGEW*>(lparam)->lParam;
    SetWindowLongPtrW(dialog, DWLP_USER, page);
    Show(dialog, *reinterpret_cast<const DocumentPage*>(page));
    return TRUE;
  }
  auto* page = reinterpret_cast<DocumentPage*>(GetWindowLongPtrW(dialog, DWLP_USER));
  if (page == nullptr) return FALSE;  // messages before the first
  if (message == WM_COMMAND) {
    const WORD event = HIWORD(wparam);
    if (LOWORD(wparam) == IDC_PAPER && event == CBN_SELCHANGE) ShowSize(dialog, *page);
    if (event == CBN_SELCHANGE || event == EN_CHANGE || event == BN_CLICKED) {
      PropSheet_Changed(GetParent(dialog), dialog);
    }
    return TRUE;
  }
  if (message != WM_NOTIFY || reinterpret_cast<const NMHDR*>(lparam)->code != PSN_APPLY)
    return FALSE;
  SetWindowLongPtrW(dialog, DWLP_MSGRESULT,
                    Confirm(dialog, *page) ? PSNRET_NOERROR : PSNRET_INVALID_NOCHANGEPAGE);
  return TRUE;
}

}  // namespace quillo
