#pragma once

#include "base/windows.h"

#include <cstring>
#include <functional>
#include <iosfwd>
#include <vector>

#include "base/gdi_owners.h"
#include "playback/dispatcher.h"

namespace quillo::test {

/// One record of an enhanced metafile.
struct EmfRecord {
  DWORD type;
  std::vector<DWORD> words;  // behind type and size
  bool operator==(const EmfRecord&) const = default;
};
void PrintTo(const EmfRecord& record, std::ostream* out);
using EmfRecords = std::vector<EmfRecord>;

/// The records of a metafile but its header and end.
EmfRecords ReadRecords(HENHMETAFILE metafile);

/// What GDI records when `draw` draws on a metafile DC.
EmfRecords RecordDirect(const std::function<void(HDC)>& draw);

using Payload = std::vector<std::byte>;

inline void AppendBytes(Payload& payload, const void* bytes, size_t size) {
  if (size == 0) return;
  payload.resize(payload.size() + size);
  std::memcpy(payload.data() + payload.size() - size, bytes, size);
}
inline void AppendPart(Payload& payload, const Payload& bytes) {
  AppendBytes(payload, bytes.data(), bytes.size());
}
template <typename T>
void AppendPart(Payload& payload, const T& value) {
  AppendBytes(payload, &value, sizeof value);
}

/// The bytes of values one behind the other.
template <typename... Parts>
Payload PayloadOf(const Parts&... parts) {
  Payload payload;
  (AppendPart(payload, parts), ...);
  return payload;
}

/// The number of a fresh GDI object. Freed ones are given out again, so what leaks makes it grow.
uintptr_t FreshObjectIndex();

/// A playback context of its own that draws on a metafile in memory.
class Page {
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

 private:
  HANDLE heap_;
  uint32_t state_flags_ = 0;
  MetafileDc dc_;

 public:
  DeviceMode settings = {};
  PlaybackContext context;
  [[nodiscard]] uint32_t StateFlags() const { return state_flags_; }
};

}  // namespace quillo::test
