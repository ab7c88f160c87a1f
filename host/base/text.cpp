#include "host/base/text.h"

#include "base/windows.h"

namespace quillo::host {

std::string ToUtf8(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  const int size =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), size, nullptr, nullptr);
  return utf8;
}

std::wstring ToWide(std::string_view text) {
  const int length = static_cast<int>(text.size());
  const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), size);
  return wide;
}

wchar_t AsSearched(wchar_t unit) {
  switch (unit) {
    case L'\0':
      return L'\xFFFD';
    case L'\x00A0':
      return L' ';
    case L'\x00AD':
      return L'-';
    default:
      return unit;
  }
}

std::string FormatTenths(int tenths) {
  std::string text = std::to_string(tenths / 10);
  if (tenths % 10 != 0) text += "." + std::to_string(tenths % 10);
  return text;
}

}  // namespace quillo::host
