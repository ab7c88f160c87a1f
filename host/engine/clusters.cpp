#include "host/engine/clusters.h"

#include "base/windows.h"

namespace quillo::host {

bool IsPair(std::wstring_view text, size_t at) {
  return IS_HIGH_SURROGATE(text[at]) && at + 1 < text.size() && IS_LOW_SURROGATE(text[at + 1]);
}

char32_t CharacterAt(std::wstring_view text, size_t at) {
  if (!IsPair(text, at)) return text[at];
  return 0x10000 + ((text[at] - char32_t{0xD800}) << 10) + (text[at + 1] - char32_t{0xDC00});
}

bool ReplaceLoneSurrogates(std::wstring& text) {
  bool found = false;
  for (size_t i = 0; i < text.size(); ++i) {
    if (IsPair(text, i)) {
      ++i;
    } else if (IS_HIGH_SURROGATE(text[i]) || IS_LOW_SURROGATE(text[i])) {
      text[i] = L'\xFFFD';
      found = true;
    }
  }
  return found;
}

bool IsNoncharacter(char32_t character) {
  return (character >= 0xFDD0 && character <= 0xFDEF) || (character & 0xFFFE) == 0xFFFE;
}

void AppendCharacter(std::wstring& text, char32_t character) {
  if (character > 0xFFFF) {
    text += static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10));
    character = 0xDC00 + (character & 0x3FF);
  }
  text += static_cast<wchar_t>(character);
}

bool ShowsNothing(wchar_t unit) {
  return unit < L' ' || (unit >= 0x200B && unit <= 0x200F) || (unit >= 0x202A && unit <= 0x202E) ||
         (unit >= 0x2060 && unit <= 0x2069) || (unit >= 0xFE00 && unit <= 0xFE0F);
}

bool IsMark(wchar_t unit) {
  if (unit < 0x300) return false;
  WORD type = 0;
  return GetStringTypeW(CT_CTYPE3, &unit, 1, &type) && (type & C3_NONSPACING) != 0 &&
         (type & C3_ALPHA) == 0;
}

size_t ClusterEnd(std::wstring_view text, size_t at) {
  size_t end = at + (IsPair(text, at) ? 2 : 1);
  while (end < text.size() && IsMark(text[end])) ++end;
  return end;
}

std::wstring Compose(std::wstring_view text) {
  std::wstring composed;
  composed.reserve(text.size());
  for (size_t at = 0, end = 0; at < text.size(); at = end) {
    end = ClusterEnd(text, at);
    const std::wstring_view cluster = text.substr(at, end - at);
    const int count = static_cast<int>(cluster.size());
    // Single characters stay, even if Unicode prefers others to them.
    std::wstring whole(count > 1 ? 3 * cluster.size() : 0, L'\0');
    const int size = count == 1 ? 0
                                : NormalizeString(NormalizationC, cluster.data(), count,
                                                  whole.data(), static_cast<int>(whole.size()));
    composed += size > 0 ? std::wstring_view(whole).substr(0, static_cast<size_t>(size)) : cluster;
  }
  return composed;
}

}  // namespace quillo::host
