#include "config/platform/message_box.h"

namespace quillo {

namespace {

/// Whether this process is on a desktop where somebody can answer a box. A service's is not, and a
/// box there would wait for ever.
bool IsInteractive() {
  constexpr DWORD kServices = 0;
  DWORD session = kServices;
  USEROBJECTFLAGS flags = {};
  DWORD size = 0;
  return ProcessIdToSessionId(GetCurrentProcessId(), &session) && session != kServices &&
         GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof flags,
                                   &size) &&
         (flags.dwFlags & WSF_VISIBLE) != 0;
}

}  // namespace

int ShowMessageBox(const wchar_t* text, const wchar_t* caption, UINT style) {
  if (IsInteractive()) return MessageBoxW(nullptr, text, caption, style);
  for (const wchar_t* part : {caption, L": ", text != nullptr ? text : L"", L"\n"}) {
    OutputDebugStringW(part);
  }
  return 0;
}

LocalBlock SystemMessage(DWORD code) {
  wchar_t* text = nullptr;
  FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM,
      nullptr, code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<wchar_t*>(&text),
      0, nullptr);
  return LocalBlock(text);
}

const wchar_t* ResourceString(HMODULE module, UINT id) {
  static wchar_t text[1024];
  ZeroMemory(text, sizeof(text));
  LoadStringW(module, id, text, ARRAYSIZE(text));
  return text;
}

int ShowResourceMessage(HMODULE module, UINT text, UINT caption, UINT style) {
  wchar_t texts[2][512] = {};
  LoadStringW(module, text, texts[0], ARRAYSIZE(texts[0]));
  LoadStringW(module, caption, texts[1], ARRAYSIZE(texts[1]));
  return ShowMessageBox(texts[0], texts[1], style);
}

void ShowLastError() {
  const LocalBlock text = SystemMessage(GetLastError());
  // Compatibility: an error box with an information icon. Kept for the users who know it.
  ShowMessageBox(static_cast<const wchar_t*>(text.Get()), L"Error", MB_ICONINFORMATION);
}

}  // namespace quillo
