#pragma once

#include <cstdint>
#include <optional>

#include "base/bytes.h"

namespace quillo::records {

/// What stands before every payload. Records follow each other without padding.
struct RecordHeader {
  uint32_t type;
  uint32_t payload_size;  // bytes, this header not counted
};
static_assert(sizeof(RecordHeader) == 8);

/// One whole record inside a stream.
struct Frame {
  uint32_t type;
  MutableBytes payload;
  size_t size;  // header and payload
};

/// The record at the start of `stream`, or nothing while its header or payload is incomplete.
std::optional<Frame> NextFrame(MutableBytes stream);

}  // namespace quillo::records
