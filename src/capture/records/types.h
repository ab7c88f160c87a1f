#pragma once

#include <cstdint>

#include "capture/records/payloads.h"
#include "capture/records/record_list.h"

namespace quillo::records {

enum RecordType : uint32_t {
#define QUILLO_ENUMERATOR(name, type, size, rule) name = type,
  QUILLO_RECORD_LIST(QUILLO_ENUMERATOR)
#undef QUILLO_ENUMERATOR

  // Written into the stream, never played.
  REC_ESCAPEMARK = 0x10000008,
  REC_RAWDATA = 0x1001FFFF,
};

inline constexpr uint32_t kFirstPlayedType = 0x10010001;
inline constexpr uint32_t kLastPlayedType = 0x10010036;

/// Types with both of these bits set are handed to playback.
inline constexpr uint32_t kPlayedTypeBits = 0x10010000;

enum PayloadRule : uint8_t { kAnySize, kNeedsPayload };

struct RecordInfo {
  RecordType type;
  const char* name;
  uint32_t payload_size;  // smallest payload that playback accepts
  PayloadRule rule;
};

inline constexpr RecordInfo kRecordInfos[] = {
#define QUILLO_INFO(name, type, size, rule) {name, #name, size, rule},
    QUILLO_RECORD_LIST(QUILLO_INFO)
#undef QUILLO_INFO
};

inline constexpr uint32_t kRecordCount = sizeof(kRecordInfos) / sizeof(kRecordInfos[0]);
static_assert(kRecordCount == 47);

/// The entry of a played type, or null.
constexpr const RecordInfo* FindRecordInfo(uint32_t type) {
  for (const RecordInfo& info : kRecordInfos) {
    if (info.type == type) return &info;
  }
  return nullptr;
}

/// Whether the list is in strictly ascending order of type and within the played range, and every
/// record that needs a payload says how much.
constexpr bool RecordListIsSound() {
  uint32_t last = kFirstPlayedType - 1;
  for (const RecordInfo& info : kRecordInfos) {
    if (info.type <= last || info.type > kLastPlayedType) return false;
    if ((info.rule == kNeedsPayload) != (info.payload_size != 0)) return false;
    last = info.type;
  }
  return true;
}
static_assert(RecordListIsSound());

}  // namespace quillo::records
