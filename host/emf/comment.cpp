#include "host/emf/comment.h"

#include <cstdio>

#include "host/emf/payload_reader.h"

namespace quillo::host::emf {

namespace {

constexpr uint32_t kEmfPlus = 0x2B464D45;  // "EMF+"
constexpr uint16_t kFirstType = 0x4001;    // the header of an EMF+ drawing
constexpr uint16_t kLastType = 0x403A;
constexpr uint32_t kRecordHeader = 12;  // type, flags, size, size of the data

/// The EMF+ records of a comment; empty when it is a comment of another kind.
Bytes EmfPlusRecords(PayloadReader& record) {
  const auto size = record.Read<uint32_t>();
  const Bytes data = record.Slice(12, size);
  if (!record.ok() || data.size() < 4 || LoadOrZero<uint32_t>(data) != kEmfPlus) return {};
  return data.subspan(4);
}

}  // namespace

bool AnnouncesEmfPlusOnly(Bytes record) {
  PayloadReader reader(record);
  const Bytes records = EmfPlusRecords(reader);
  // The lowest flag of the header says that the file can be drawn without EMF+ too.
  return records.size() >= kRecordHeader && LoadOrZero<uint16_t>(records) == kFirstType &&
         (LoadOrZero<uint16_t>(records, 2) & 1) == 0;
}

std::string FindCommentFault(Bytes record) {
  PayloadReader reader(record);
  Bytes records = EmfPlusRecords(reader);
  if (!reader.ok()) return "its data leave the record";
  while (!records.empty()) {
    const auto type = LoadOrZero<uint16_t>(records);
    const auto size = LoadOrZero<uint32_t>(records, 4);
    const auto data_size = LoadOrZero<uint32_t>(records, 8);
    char what[80];
    if (type < kFirstType || type > kLastType) {
      snprintf(what, sizeof(what), "there is no EMF+ record of type 0x%04X", type);
      return what;
    }
    if (size < kRecordHeader || size > records.size() || data_size > size - kRecordHeader) {
      snprintf(what, sizeof(what), "its EMF+ record of type 0x%04X does not fit", type);
      return what;
    }
    records = records.subspan(size);
  }
  return {};
}

}  // namespace quillo::host::emf
