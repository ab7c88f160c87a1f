#include "host/base/file_name.h"

#include "base/windows.h"

#include <algorithm>
#include <iterator>

namespace quillo::host {

namespace {

constexpr size_t kMaxLength = 120;  // leaves room for a folder in MAX_PATH

/// Characters that turn the direction of what follows: a name could read as another.
bool IsDirectional(wchar_t c) {
  return c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

bool IsForbidden(wchar_t c) {
  return c < L' ' || c == 0x7F || std::wstring_view(L"<>:\"/\\|?*").find(c) != std::wstring::npos;
}

/// "CON", "com1": a device whatever the extension.
bool IsDevice(std::wstring_view name) {
  std::wstring stem(name.substr(0, name.find(L'.')));
  stem.erase(stem.find_last_not_of(L' ') + 1);
  for (const wchar_t* device : {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"}) {
    if (_wcsicmp(stem.c_str(), device) == 0) return true;
  }
  // Also with the superscript digits 1 to 3.
  return stem.size() == 4 &&
         (_wcsnicmp(stem.c_str(), L"COM", 3) == 0 || _wcsnicmp(stem.c_str(), L"LPT", 3) == 0) &&
         std::wstring_view(L"0123456789\u00B9\u00B2\u00B3").find(stem[3]) != std::wstring::npos;
}

/// Blanks at either end and dots at the end, which Windows drops.
void Trim(std::wstring& name) {
  name.erase(0, std::min(name.find_first_not_of(L' '), name.size()));
  name.erase(name.find_last_not_of(L" .") + 1);
}

}  // namespace

std::wstring FileNameFor(std::wstring_view document) {
  std::wstring name;
  std::ranges::copy_if(document, std::back_inserter(name),
                       [](wchar_t c) { return !IsDirectional(c); });
  std::ranges::replace_if(name, IsForbidden, L'_');
  Trim(name);
  if (name.size() > kMaxLength) {
    name.resize(IS_LOW_SURROGATE(name[kMaxLength]) ? kMaxLength - 1 : kMaxLength);
    Trim(name);
  }
  if (name.empty()) return L"Document";
  return IsDevice(name) ? L"_" + name : name;
}

}  // namespace quillo::host
