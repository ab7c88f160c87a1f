#include "host/emf_format/carried_records.h"

#include <algorithm>
#include <utility>

#include "base/arithmetic.h"
#include "host/emf_format/record_types.h"

namespace quillo::host::emf {

namespace {

// Distinguishes these comments from those of others. (The driver itself writes none.)
constexpr char kMark[16] = {'Q', 'u', 'i', 'l', 'l', 'o', ' ', 'r',
                            'e', 'c', 'o', 'r', 'd', ' ', '1', '\0'};

// Byte offsets.
constexpr size_t kType = 0;          // of any record
constexpr size_t kSize = 4;          // of any record
constexpr size_t kCommentSize = 8;   // bytes of a comment's data
constexpr size_t kCommentData = 12;  // the data themselves
constexpr size_t kPenIndex = 8;      // the object index of either kind of pen
constexpr size_t kFileSize = 48;     // in the header: bytes of the file
constexpr size_t kRecordCount = 52;  // in the header

/// The record at `offset`; empty when it is truncated or too short for its type.
MutableBytes RecordAt(MutableBytes metafile, size_t offset) {
  const size_t size = LoadOrZero<uint32_t>(metafile, offset + kSize);
  if (!RangeFits(metafile.size(), offset, size)) return {};
  const MutableBytes record = metafile.subspan(offset, size);
  const bool whole = size % 4 == 0 && size >= MinRecordBytes(LoadOrZero<uint32_t>(record));
  return whole ? record : MutableBytes();
}

/// The record that a comment carries; empty for every other record.
MutableBytes CarriedBy(MutableBytes record) {
  if (LoadOrZero<uint32_t>(record, kType) != kEmrGDICOMMENT) return {};
  const size_t size = LoadOrZero<uint32_t>(record, kCommentSize);
  if (size < sizeof kMark || !RangeFits(record.size(), kCommentData, size)) return {};
  const MutableBytes data = record.subspan(kCommentData, size);
  if (std::memcmp(data.data(), kMark, sizeof kMark) != 0) return {};
  const MutableBytes carried = RecordAt(data, sizeof kMark);
  return carried.size() == size - sizeof kMark ? carried : MutableBytes();
}

}  // namespace

std::vector<std::byte> CarryRecord(Bytes record) {
  std::vector<std::byte> data(sizeof kMark + record.size());
  std::memcpy(data.data(), kMark, sizeof kMark);
  std::copy(record.begin(), record.end(), data.begin() + sizeof kMark);
  return data;
}

std::optional<size_t> UnpackCarriedRecords(MutableBytes metafile) {
  if (LoadOrZero<uint32_t>(metafile) != kEmrHEADER) return std::nullopt;
  MutableBytes pen;  // carried, and waiting for its index
  uint32_t type = 0, count = 0;
  size_t from = 0, to = 0;
  while (type != kEmrEOF) {
    MutableBytes record = RecordAt(metafile, from);
    if (record.empty()) return std::nullopt;
    from += record.size();
    type = LoadOrZero<uint32_t>(record);
    const MutableBytes waiting = std::exchange(pen, MutableBytes());
    if (type == kEmrCREATEPEN && !waiting.empty()) {
      Store(waiting, kPenIndex, LoadOrZero<uint32_t>(record, kPenIndex));
      record = waiting;
    } else if (const MutableBytes carried = CarriedBy(record); !carried.empty()) {
      if (LoadOrZero<uint32_t>(carried) == kEmrEXTCREATEPEN) {
        pen = carried;
        continue;
      }
      record = carried;
    }
    std::memmove(metafile.data() + to, record.data(), record.size());
    to += record.size();
    ++count;
  }
  Store(metafile, kFileSize, static_cast<uint32_t>(to));
  Store(metafile, kRecordCount, count);
  return to;
}

}  // namespace quillo::host::emf
