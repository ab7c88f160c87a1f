#include <algorithm>
#include <commctrl.h>
#include <cstring>
#include <cwctype>
#include <functional>
#include <prsht.h>
#include <thread>

#include "support/case_table.h"
#include "ui/printer_interface_test.h"
#include "ui/resource_ids.h"

// The page of settings as a user meets it: through the spooler, with the keys of the sheet.
namespace quillo::test {
namespace {

/// The page in the property sheet of this process, while one is open.
HWND FindPage() {
  for (HWND sheet = nullptr;
       (sheet = FindWindowExW(nullptr, sheet, L"#32770", nullptr)) != nullptr;) {
    const HWND page = FindWindowExW(sheet, nullptr, L"#32770", nullptr);
    DWORD process = 0;
    GetWindowThreadProcessId(sheet, &process);
    if (process == GetCurrentProcessId() && GetDlgItem(page, IDC_PAPER) != nullptr) return page;
  }
  return nullptr;
}

class SettingsPage : public PrinterInterface {
 protected:
  /// Opens the sheet for `mode`, lets `act` use it, presses `button` and returns what came out.
  DeviceMode Prompt(DWORD flags, const std::function<void(HWND page)>& act, int button) {
    DeviceMode out = mode_;
    std::thread user([&] {
      HWND page = nullptr;
      for (int tries = 0; page == nullptr && tries < 400; ++tries) {
        Sleep(25);
        page = FindPage();
      }
      if (page == nullptr) return;
      const HWND sheet = GetParent(page);
      SendMessageW(page, WM_NULL, 0, 0);  // returns once the page is filled
      act(page);
      PostMessageW(sheet, PSM_PRESSBUTTON, static_cast<WPARAM>(button), 0);
      for (int tries = 0; IsWindow(sheet) && tries < 100; ++tries) {
        Sleep(25);
        if (const HWND warning = FindWindowW(L"#32770", L"Page"); warning != nullptr) {
          warned_ = true;
          PostMessageW(warning, WM_CLOSE, 0, 0);
          PostMessageW(sheet, PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
        }
      }
    });
    std::wstring name = kUiPrinter;
    DocumentPropertiesW(nullptr, printer_.Get(), name.data(), &out.pub, &mode_.pub,
                        DM_IN_BUFFER | DM_OUT_BUFFER | DM_IN_PROMPT | flags);
    user.join();
    return out;
  }

  bool warned_ = false;
  DeviceMode mode_ = DefaultMode();
};

void Choose(HWND page, int control, LPARAM number) {
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

/// What a user does with the page; "_" is a blank.
void Act(HWND page, const std::string& actions) {
  const bool read_only = actions.starts_with("readonly");
  std::istringstream words(read_only ? actions.substr(9) : actions);
  for (const int control : {IDC_PAPER, IDC_PORTRAIT, IDC_LANDSCAPE, IDC_QUALITY}) {
    EXPECT_EQ(IsWindowEnabled(GetDlgItem(page, control)), !read_only) << control;
  }
  for (std::string word; words >> word;) {
    std::ranges::replace(word, '_', ' ');
    const size_t equals = std::min(word.find('='), word.size());
    const std::string name = word.substr(0, equals);
    const std::string value = word.substr(std::min(equals + 1, word.size()));
    if (name == "paper" || name == "quality") {
      Choose(page, name == "paper" ? IDC_PAPER : IDC_QUALITY, std::stol(value));
    } else if (name == "width" || name == "height") {
      SetDlgItemTextA(page, name == "width" ? IDC_WIDTH : IDC_HEIGHT, value.c_str());
    } else {
      SendDlgItemMessageW(page, name == "landscape" ? IDC_LANDSCAPE : IDC_PORTRAIT, BM_CLICK, 0, 0);
    }
  }
  // Only a size of one's own can be typed.
  const bool own_size = !read_only && actions.find("paper=256") != std::string::npos;
  EXPECT_EQ(IsWindowEnabled(GetDlgItem(page, IDC_WIDTH)), own_size);
  EXPECT_EQ(IsWindowEnabled(GetDlgItem(page, IDC_HEIGHT)), own_size);
}

TEST_F(SettingsPage, Actions_LeadToSettings) {
  for (const CaseRow& row : ReadCases("ui/settings_page.txt")) {
    SCOPED_TRACE(row.place);
    warned_ = false;
    const DeviceMode mode = Prompt(
        row.fields[0].starts_with("readonly") ? kNoPermission : 0,
        [&](HWND page) { Act(page, row.fields[0]); },
        row.fields[1] == "ok" ? PSBTN_OK : PSBTN_CANCEL);
    EXPECT_EQ(ExpectMembers(mode, row.fields[3]), "");
    EXPECT_EQ(warned_, row.fields[2] == "warned");
  }
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
