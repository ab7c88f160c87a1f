#pragma once

#include <cstdint>
#include <optional>

#include "base/bytes.h"

namespace quillo::records {

/// Precedes every payload. Records follow each other without padding.
struct RecordHeader {
  uint32_t type;
  uint32_t payload_size;  // bytes, this header not counted
};
static_assert(sizeof(RecordHeader) == 8);

/// One whole record inside a stream.
struct Frame {
  uint32_t type;
  Bytes payload;
  size_t size;  // header and payload
};

/// The record at the start of `stream`, or nothing while its header or payload is incomplete.
inline std::optional<Frame> NextFrame(Bytes stream) {
  if (stream.size() < sizeof(RecordHeader)) return std::nullopt;
  const auto header = LoadOrZero<RecordHeader>(stream);
  const Bytes rest = stream.subspan(sizeof(RecordHeader));
  if (rest.size() < header.payload_size) return std::nullopt;
  return Frame{header.type, rest.first(header.payload_size),
               sizeof(RecordHeader) + header.payload_size};
}

}  // namespace quillo::records
