// Text files of any bytes: decoded, cut into lines, taken apart into characters.
#include "base/windows.h"

#include <algorithm>
#include <cstdlib>
#include <usp10.h>

#include "host/engine/clusters.h"
#include "host/plain_text/decode.h"
#include "host/plain_text/line_breaker.h"
#include "platform/input.h"

namespace {

using quillo::Bytes;
using namespace quillo::host;

void Check(bool holds) {
  if (!holds) std::abort();
}

void TryLine(const TextLine& line) {
  Check(line.text.size() == line.columns.size());
  std::wstring again;
  for (size_t at = 0; at < line.text.size();) {
    const size_t end = ClusterEnd(line.text, at);
    Check(end > at && end <= line.text.size());
    at = end;
  }
  for (size_t at = 0; at < line.text.size(); at += IsPair(line.text, at) ? 2 : 1) {
    AppendCharacter(again, CharacterAt(line.text, at));
  }
  Check(again == line.text);
  Compose(line.text);
}

}  // namespace

// Some of Windows' answers about characters: their order of magnitude, not their truth.
extern "C" {
BOOL WINAPI GetStringTypeW(DWORD kind, LPCWSTR text, INT count, WORD* types) {
  for (INT i = 0; i < count; ++i) {
    const bool hebrew = text[i] >= 0x590 && text[i] < 0x700;
    const bool mark = text[i] >= 0x300 && text[i] < 0x370;
    types[i] = kind == CT_CTYPE2 ? (hebrew ? C2_RIGHTTOLEFT : C2_LEFTTORIGHT)
                                 : static_cast<WORD>(mark ? C3_NONSPACING : C3_ALPHA);
  }
  return TRUE;
}
INT WINAPI NormalizeString(NORM_FORM, LPCWSTR text, INT count, LPWSTR out, INT capacity) {
  if (count > capacity) return 0;
  std::copy_n(text, count, out);
  return std::min(count, 1);
}
HRESULT WINAPI ScriptItemize(const WCHAR*, int, int, const SCRIPT_CONTROL*, const SCRIPT_STATE*,
                             SCRIPT_ITEM*, int*) {
  return E_NOTIMPL;
}
HRESULT WINAPI ScriptLayout(int, const BYTE*, int*, int*) { return E_NOTIMPL; }
INT WINAPI MultiByteToWideChar(UINT page, DWORD flags, LPCSTR bytes, INT size, LPWSTR out,
                               INT capacity) {
  int written = 0;
  for (INT at = 0; at < size; ++at) {
    const auto byte = static_cast<unsigned char>(bytes[at]);
    wchar_t unit = byte;
    if (page == CP_UTF8 && byte >= 0x80) {
      if ((byte & 0xE0) != 0xC0 || at + 1 == size) {
        if ((flags & MB_ERR_INVALID_CHARS) != 0) return 0;
        unit = 0xFFFD;
      } else {
        unit = static_cast<wchar_t>((byte & 0x1F) << 6 | (bytes[++at] & 0x3F));
      }
    }
    if (capacity != 0) {
      Check(written < capacity);
      out[written] = unit;
    }
    ++written;
  }
  return written;
}
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  quillo::fuzz::Input input(std::as_bytes(std::span(data, size)));
  const int columns = 1 + input.Take<uint8_t>();
  const Bytes file = std::as_bytes(std::span(data, size)).subspan(std::min<size_t>(1, size));
  const auto fault = FindNoText(file);
  Check(!fault || *fault < file.size());
  const std::wstring text = DecodeText(file);
  LineBreaker lines(text);
  for (size_t count = 0; !lines.AtEnd(); ++count) {
    Check(count <= text.size());
    TryLine(lines.Next(columns));
  }
  return 0;
}
