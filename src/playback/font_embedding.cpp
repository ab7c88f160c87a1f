#include "playback/font_embedding.h"

#include <algorithm>
#include <cwchar>
#include <strsafe.h>

#include "base/gdi_owners.h"
#include "base/system_owners.h"
#include "config/user/as_user.h"
#include "config/user/user_files.h"

namespace quillo {
namespace {

/// Number for the names of embedded files; shared by all jobs of the process.
uint32_t g_font_file_counter = 0;

constexpr size_t kFaceCharacters = LF_FACESIZE + 1;  // a terminator also after a full field
constexpr size_t kPathCharacters = MAX_PATH + 64;    // directory, face name and counter

using Face = wchar_t[kFaceCharacters];
using Path = wchar_t[kPathCharacters];

bool MarksTemporaryFont(const Face& face) {
  Face lower;
  std::copy(std::begin(face), std::end(face), lower);
  CharLowerW(lower);
  return std::wcsstr(lower, L".tmp") != nullptr;
}

/// Whether the part of a file name before its first dot or blank names a device.
bool NamesDevice(const wchar_t* name) {
  const size_t length = std::wcscspn(name, L". ");
  const auto is = [&](const wchar_t* device, size_t device_length) {
    return length == device_length && _wcsnicmp(name, device, std::wcslen(device)) == 0;
  };
  for (const wchar_t* device : {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"}) {
    if (is(device, std::wcslen(device))) return true;
  }
  constexpr wchar_t kPortDigits[] = L"0123456789\u00B9\u00B2\u00B3";
  return (is(L"COM", 4) || is(L"LPT", 4)) && std::wcschr(kPortDigits, name[3]) != nullptr;
}

/// Whether directory + "\" + name is a file of that directory, and not a device, a stream, or a
/// file elsewhere.
bool CanNameFile(const wchar_t* name) {
  for (const wchar_t* c = name; *c != L'\0'; ++c) {
    if (*c < L' ' || std::wcschr(L"<>:\"/\\|?*", *c) != nullptr) return false;
  }
  return std::wcsstr(name, L"..") == nullptr && !NamesDevice(name);
}

/// A path for the font's file.
/// Compatibility: where a file already has the plain name, a number is appended, and a file of that
/// name is overwritten: there is only one attempt at a free name; kept for clients.
bool MakePath(const wchar_t* directory, const wchar_t* face, Path& path) {
  if (FAILED(StringCchPrintfW(path, kPathCharacters, L"%s\\%s", directory, face))) return false;
  if (GetFileAttributesW(path) == INVALID_FILE_ATTRIBUTES) return true;
  const size_t length = std::wcslen(path);
  return SUCCEEDED(StringCchPrintfW(path + length, kPathCharacters - length, L"%d",
                                    static_cast<int>(g_font_file_counter++)));
}

/// The whole file of the font selected in `dc`; `size` receives its length in bytes. Empty on
/// failure.
HeapBlock ReadFontFile(HDC dc, DWORD& size) {
  size = GetFontData(dc, 0, 0, nullptr, 0);
  if (size == 0 || size == GDI_ERROR) return {};
  HeapBlock content(size);
  if (content && GetFontData(dc, 0, 0, content.Get(), size) == GDI_ERROR) return {};
  return content;
}

/// Writes the font's file; `path` receives where. False when it cannot be written completely; no
/// file is left then.
bool WriteFontFile(const wchar_t* directory, const wchar_t* face, const void* content, DWORD size,
                   Path& path) {
  const AsUser user;
  if (!user || !IsPlainFolder(directory) || !MakePath(directory, face, path) ||
      !IsPlainFileOrFree(path)) {
    return false;
  }
  KernelHandle file(
      CreateFileW(path, GENERIC_ALL, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY, nullptr));
  if (!file) return false;
  DWORD written = 0;
  if (WriteFile(file.Get(), content, size, &written, nullptr) && written == size) return true;
  file.Reset();
  DeleteFileW(path);
  return false;
}

}  // namespace

bool EmbedFont(const PlaybackContext& context, const LOGFONTW& font) {
  Face face = {};
  std::copy(std::begin(font.lfFaceName), std::end(font.lfFaceName), face);
  const wchar_t* directory = context.job.font_directory;
  if (!MarksTemporaryFont(face) || directory[0] == L'\0' || !CanNameFile(face)) return false;

  const ScreenDc dc(GetDC(nullptr));
  const Font created(CreateFontIndirectW(&font));
  const SelectScope selected(dc.Get(), created.Get());
  if (!selected) return false;  // without one of them, too
  DWORD size = 0;
  const HeapBlock content = ReadFontFile(dc.Get(), size);
  Path path;
  if (!content || !WriteFontFile(directory, face, content.Get(), size, path)) return false;
  if (SUCCEEDED(context.job.events->FontEmbedded(path))) return true;
  const AsUser user;
  if (user) DeleteFileW(path);
  return true;
}

}  // namespace quillo
