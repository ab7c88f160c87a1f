#pragma once

#include "base/windows.h"

#include <cstring>
#include <cwchar>
#include <functional>
#include <vector>

#include "base/gdi_owners.h"
#include "playback/dispatcher.h"

namespace quillo::test {

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
class Page final : private PlaybackEvents {
 public:
  /// `heap_limit`: bytes of the job's heap; 0 = as many as there are.
  explicit Page(size_t heap_limit = 0)
      : heap_(HeapCreate(0, 0, heap_limit)),
        context({.printer = nullptr,
                 .heap = heap_,
                 .device_settings = &settings,
                 .bitmap_limits = kDefaultBitmapLimits,
                 .font_directory = L"",
                 .events = this}) {
    context.page_dc = dc_.Get();
  }
  ~Page() {
    EndPagePlayback(context);
    context.seen_fonts.Clear();
    context.run_list.Clear();
    HeapDestroy(heap_);
  }
  Page(const Page&) = delete;
  Page& operator=(const Page&) = delete;

  int32_t Play(uint32_t type, Payload payload = {}) {
    return DispatchRecord(context, type, payload);
  }

  /// Ends the page as the job does.
  EnhMetafile Close() {
    EndPagePlayback(context);
    context.page_dc = nullptr;
    return dc_.Close();
  }
  /// Ends the page. Whether nothing was drawn on it.
  bool EndsEmpty() {
    ENHMETAHEADER header = {};
    GetEnhMetaFileHeader(Close().Get(), sizeof header, &header);
    return header.nRecords == 2;  // this one and the end
  }

 private:
  void JobFailed() override { job_failed = true; }
  HRESULT FontEmbedded(const wchar_t* path) override { return on_font(path); }

  HANDLE heap_;
  MetafileDc dc_{CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr)};

 public:
  DeviceMode settings = {};
  PlaybackContext context;
  bool job_failed = false;
  std::function<HRESULT(const wchar_t* path)> on_font = [](const wchar_t*) { return S_OK; };
};

}  // namespace quillo::test
