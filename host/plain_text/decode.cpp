#include "host/plain_text/decode.h"

#include "base/windows.h"

#include <algorithm>
#include <climits>

#include "host/engine/clusters.h"

namespace quillo::host {

namespace {

enum class Mark { kNone, kUtf8, kUtf16, kUtf16Swapped };

Mark MarkOf(Bytes bytes) {
  if (LoadOrZero<uint16_t>(bytes) == 0xFEFF) return Mark::kUtf16;
  if (LoadOrZero<uint16_t>(bytes) == 0xFFFE) return Mark::kUtf16Swapped;
  if ((LoadOrZero<uint32_t>(bytes) & 0xFFFFFF) == 0xBFBBEF) return Mark::kUtf8;
  return Mark::kNone;
}

std::wstring DecodeUtf16(Bytes bytes, bool swapped) {
  std::wstring text(bytes.size() / 2, L'\0');
  for (size_t i = 0; i < text.size(); ++i) {
    const auto unit = LoadOrZero<uint16_t>(bytes, i * 2);
    text[i] = static_cast<wchar_t>(swapped ? SwapBytes(unit) : unit);
  }
  ReplaceLoneSurrogates(text);
  return text;
}

/// With MB_ERR_INVALID_CHARS, empty when the bytes are not valid in the code page.
std::wstring DecodeCodePage(Bytes bytes, UINT code_page, DWORD flags) {
  const auto* chars = reinterpret_cast<const char*>(bytes.data());
  const int size = static_cast<int>(std::min<size_t>(bytes.size(), INT_MAX));
  const int length = MultiByteToWideChar(code_page, flags, chars, size, nullptr, 0);
  std::wstring text(static_cast<size_t>(length), L'\0');
  MultiByteToWideChar(code_page, flags, chars, size, text.data(), length);
  return text;
}

bool IsControl(std::byte byte) {
  constexpr std::string_view kOfText = "\b\t\n\v\f\r\x1A\x1B";
  const auto value = static_cast<char>(byte);
  return (value >= 0 && value < ' ' && kOfText.find(value) == std::string_view::npos) ||
         value == '\x7F';
}

}  // namespace

std::optional<size_t> FindNoText(Bytes head) {
  if (MarkOf(head) != Mark::kNone) return std::nullopt;
  const auto control = std::ranges::find_if(head, IsControl);
  if (control == head.end()) return std::nullopt;
  return control - head.begin();
}

std::wstring DecodeText(Bytes file) {
  switch (MarkOf(file)) {
    case Mark::kUtf8:
      return DecodeCodePage(file.subspan(3), CP_UTF8, 0);
    case Mark::kUtf16:
      return DecodeUtf16(file.subspan(2), false);
    case Mark::kUtf16Swapped:
      return DecodeUtf16(file.subspan(2), true);
    case Mark::kNone:
      break;
  }
  const std::wstring text = DecodeCodePage(file, CP_UTF8, MB_ERR_INVALID_CHARS);
  return text.empty() ? DecodeCodePage(file, CP_ACP, 0) : text;
}

}  // namespace quillo::host
