#include "job/text_runs.h"

#include <oleauto.h>

#include "config/platform/message_box.h"

namespace quillo {

namespace {

constexpr wchar_t kProperty[] = L"TextRuns";

/// Shows the system's text of a COM error.
void ShowComError(HRESULT error) {
  wchar_t text[512];
  const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                      nullptr, static_cast<DWORD>(error), 0, text, 512, nullptr);
  if (length == 0) wsprintfW(text, L"0x%08X", static_cast<unsigned>(error));
  ShowMessageBox(text, L"Error", MB_SETFOREGROUND);
}

}  // namespace

void HandOverTextRuns(IDispatch& page, const HeapList<uint32_t>& run_list) {
  auto* name = const_cast<wchar_t*>(kProperty);
  DISPID property = DISPID_UNKNOWN;
  if (FAILED(page.GetIDsOfNames(IID_NULL, &name, 1, LOCALE_SYSTEM_DEFAULT, &property))) return;

  VARIANT value = {};
  value.vt = VT_ARRAY | VT_I4;
  value.parray = SafeArrayCreateVector(VT_I4, 0, run_list.Count());
  if (value.parray == nullptr) return;
  void* counts = nullptr;
  HRESULT result = SafeArrayAccessData(value.parray, &counts);
  if (SUCCEEDED(result)) {
    auto* out = static_cast<uint32_t*>(counts);
    run_list.ForEach([&out](uint32_t count) { *out++ = count; });
    SafeArrayUnaccessData(value.parray);
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters = {&value, &put, 1, 1};
    result = page.Invoke(property, IID_NULL, LOCALE_SYSTEM_DEFAULT, DISPATCH_PROPERTYPUT,
                         &parameters, nullptr, nullptr, nullptr);
  }
  SafeArrayDestroy(value.parray);
  if (FAILED(result)) ShowComError(result);
}

}  // namespace quillo
