#pragma once

#include "base/windows.h"

#include <cstring>
#include <cwchar>
#include <functional>
#include <vector>

#include "base/gdi_owners.h"
#include "playback/dispatcher.h"

namespace quillo::test {

/// Records of an enhanced metafile but its header and end, as double words: type, size, and so on.
using EmfRecords = std::vector<std::vector<DWORD>>;

/// What GDI records when `draw` draws on a metafile DC.
EmfRecords RecordDirect(const std::function<void(HDC)>& draw);

using Payload = std::vector<std::byte>;

template <typename T>
void AppendPart(Payload& payload, const T& value) {
  const void* bytes = &value;
  size_t size = sizeof value;
  if constexpr (std::is_same_v<T, Payload>) bytes = value.data(), size = value.size();
  if (size == 0) return;
  payload.resize(payload.size() + size);
  std::memcpy(payload.data() + payload.size() - size, bytes, size);
}

/// The bytes of the values, one after the other.
template <typename... Parts>
Payload PayloadOf(const Parts&... parts) {
  Payload payload;
  (AppendPart(payload, parts), ...);
  return payload;
}

/// The font of this name.
inline LOGFONTW FontNamed(const wchar_t* face, LONG height = 100) {
  LOGFONTW font = {};
  font.lfHeight = height;
  std::wcsncpy(font.lfFaceName, face, LF_FACESIZE);
  return font;
}

/// A playback context of its own that draws on a metafile in memory.
class Page : private PlaybackEvents {
 public:
  /// `heap_limit`: bytes of the job's heap; 0 = as many as there are.
  explicit Page(size_t heap_limit = 0);
  ~Page();
  Page(const Page&) = delete;
  Page& operator=(const Page&) = delete;

  int32_t Play(uint32_t type, Payload payload = {}) {
    return DispatchRecord(context, type, payload);
  }

  /// Ends the page as the job does.
  EnhMetafile Close();
  /// Ends the page and returns what is on it.
  EmfRecords Records();

 private:
  void JobFailed() override { job_failed = true; }
  HRESULT FontEmbedded(const wchar_t* path) override { return on_font(path); }

  HANDLE heap_;
  MetafileDc dc_;

 public:
  DeviceMode settings = {};
  PlaybackContext context;
  bool job_failed = false;
  std::function<HRESULT(const wchar_t* path)> on_font = [](const wchar_t*) { return S_OK; };
};

}  // namespace quillo::test
