#include "config/platform/message_box.h"

namespace quillo {

int ShowMessageBox(const wchar_t* text, const wchar_t* caption, UINT style) {
  return MessageBoxW(nullptr, text, caption, style);
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
