#include <algorithm>
#include <commctrl.h>
#include <cstring>
#include <cwctype>
#include <functional>
#include <prsht.h>
#include <thread>

#include "ui/printer_interface_test.h"
#include "ui/resource_ids.h"

// The page of settings as a user meets it: through the spooler, with the keys of the sheet.
namespace quillo::test {
namespace {

/// The property sheet of this process while it is open.
struct OpenSheet {
  HWND sheet = nullptr;
  HWND page = nullptr;
};

OpenSheet FindSheet() {
  OpenSheet found;
  EnumWindows(
      [](HWND window, LPARAM result) -> BOOL {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        auto& open = *reinterpret_cast<OpenSheet*>(result);
        if (process != GetCurrentProcessId()) return TRUE;
        open.page = FindWindowExW(window, nullptr, L"#32770", nullptr);
        if (open.page == nullptr || GetDlgItem(open.page, IDC_PAPER) == nullptr) return TRUE;
        open.sheet = window;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&found));
  return found;
}

class SettingsPage : public PrinterInterface {
 protected:
  /// Opens the sheet for `mode`, lets `act` use it, presses `button` and returns what came out.
  DeviceMode Prompt(DWORD flags, const std::function<void(HWND page)>& act, int button) {
    DeviceMode out = mode_;
    std::thread user([&] {
      OpenSheet open;
      for (int tries = 0; open.sheet == nullptr && tries < 400; ++tries) {
        Sleep(25);
        open = FindSheet();
      }
      if (open.sheet == nullptr) return;
      SendMessageW(open.page, WM_NULL, 0, 0);  // returns once the page is filled
      act(open.page);
      PostMessageW(open.sheet, PSM_PRESSBUTTON, static_cast<WPARAM>(button), 0);
      for (int tries = 0; IsWindow(open.sheet) && tries < 100; ++tries) {
        Sleep(25);
        if (const HWND warning = FindWindowW(L"#32770", L"Page"); warning != nullptr) {
          warned_ = true;
          PostMessageW(warning, WM_CLOSE, 0, 0);
          PostMessageW(open.sheet, PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
        }
      }
    });
    std::wstring name = kUiPrinter;
    DocumentPropertiesW(nullptr, printer_.Get(), name.data(), &out.pub, &mode_.pub,
                        DM_IN_BUFFER | DM_OUT_BUFFER | DM_IN_PROMPT | flags);
    user.join();
    return out;
  }

  static void Choose(HWND page, int control, LPARAM number) {
    const HWND box = GetDlgItem(page, control);
    const auto count = SendMessageW(box, CB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < count; ++i) {
      if (SendMessageW(box, CB_GETITEMDATA, static_cast<WPARAM>(i), 0) != number) continue;
      SendMessageW(box, CB_SETCURSEL, static_cast<WPARAM>(i), 0);
      SendMessageW(page, WM_COMMAND, MAKEWPARAM(control, CBN_SELCHANGE),
                   reinterpret_cast<LPARAM>(box));
      return;
    }
    ADD_FAILURE() << "no choice " << number;
  }

  bool warned_ = false;
  DeviceMode mode_ = [] {
    DeviceMode mode;
    BuildDefaultDeviceMode(mode, kUiPrinter);
    return mode;
  }();
};

TEST_F(SettingsPage, Confirmed_IsApplied) {
  const DeviceMode chosen = Prompt(
      0,
      [](HWND page) {
        EXPECT_FALSE(IsWindowEnabled(GetDlgItem(page, IDC_WIDTH)));
        Choose(page, IDC_PAPER, DMPAPER_A3);
        Choose(page, IDC_QUALITY, 1200);
        SendDlgItemMessageW(page, IDC_LANDSCAPE, BM_CLICK, 0, 0);
      },
      PSBTN_OK);
  EXPECT_EQ(chosen.pub.dmPaperSize, DMPAPER_A3);
  EXPECT_EQ(chosen.pub.dmOrientation, DMORIENT_LANDSCAPE);
  EXPECT_EQ(ResolutionOf(chosen.pub), 1200);
}

TEST_F(SettingsPage, OwnSize_IsReadInMillimetres) {
  const DeviceMode chosen = Prompt(
      0,
      [](HWND page) {
        Choose(page, IDC_PAPER, DMPAPER_USER);
        EXPECT_TRUE(IsWindowEnabled(GetDlgItem(page, IDC_WIDTH)));
        SetDlgItemTextW(page, IDC_WIDTH, L"100,5");
        SetDlgItemTextW(page, IDC_HEIGHT, L" 3276.7 ");
      },
      PSBTN_OK);
  EXPECT_EQ(chosen.pub.dmPaperSize, DMPAPER_USER);
  EXPECT_EQ(chosen.pub.dmPaperWidth, 1005);
  EXPECT_EQ(chosen.pub.dmPaperLength, 32767);
  EXPECT_EQ(chosen.pub.dmPrintQuality, DMRES_LOW);  // untouched
}

TEST_F(SettingsPage, NoSize_IsRefusedWithAWarning) {
  for (const wchar_t* width : {L"", L"0.9", L"-5", L"3276.8", L"1e9", L"nan", L"10 cm"}) {
    warned_ = false;
    const DeviceMode out = Prompt(
        0,
        [=](HWND page) {
          Choose(page, IDC_PAPER, DMPAPER_USER);
          SetDlgItemTextW(page, IDC_WIDTH, width);
        },
        PSBTN_OK);
    EXPECT_TRUE(warned_) << width;
    EXPECT_EQ(out.pub.dmPaperSize, DMPAPER_LETTER);
  }
}

TEST_F(SettingsPage, CancelledOrReadOnly_IsDropped) {
  const auto change = [](HWND page) { Choose(page, IDC_PAPER, DMPAPER_A3); };
  DeviceMode out = Prompt(0, change, PSBTN_CANCEL);
  EXPECT_EQ(out.pub.dmPaperSize, DMPAPER_LETTER);
  out = Prompt(
      kNoPermission,
      [&](HWND page) {
        for (const int control : {IDC_PAPER, IDC_PORTRAIT, IDC_LANDSCAPE, IDC_QUALITY, IDC_WIDTH}) {
          EXPECT_FALSE(IsWindowEnabled(GetDlgItem(page, control))) << control;
        }
        change(page);
        EXPECT_FALSE(IsWindowEnabled(GetDlgItem(page, IDC_WIDTH)));
      },
      PSBTN_OK);
  EXPECT_EQ(out.pub.dmPaperSize, DMPAPER_LETTER);
}

// A screen reader takes a control's name from the label before it; keys reach it by a letter.
TEST_F(SettingsPage, EveryControl_HasALabelWithItsOwnKey) {
  Prompt(
      0,
      [](HWND page) {
        std::wstring keys;
        for (const int control :
             {IDC_PAPER, IDC_WIDTH, IDC_HEIGHT, IDC_QUALITY, IDC_PORTRAIT, IDC_LANDSCAPE}) {
          HWND named = GetDlgItem(page, control);
          const bool is_button = control == IDC_PORTRAIT || control == IDC_LANDSCAPE;
          if (!is_button) named = GetWindow(named, GW_HWNDPREV);
          wchar_t label[64] = {};
          GetWindowTextW(named, label, ARRAYSIZE(label));
          const wchar_t* mark = std::wcschr(label, L'&');
          ASSERT_NE(mark, nullptr) << control;
          keys += static_cast<wchar_t>(std::towlower(mark[1]));
        }
        std::ranges::sort(keys);
        EXPECT_EQ(std::ranges::adjacent_find(keys), keys.end());
      },
      PSBTN_CANCEL);
}

}  // namespace
}  // namespace quillo::test
