#include "capture/records/framing.h"

namespace quillo::records {

std::optional<Frame> NextFrame(MutableBytes stream) {
  if (stream.size() < sizeof(RecordHeader)) return std::nullopt;
  const auto header = LoadOrZero<RecordHeader>(stream);
  const MutableBytes rest = stream.subspan(sizeof(RecordHeader));
  if (rest.size() < header.payload_size) return std::nullopt;
  return Frame{header.type, rest.first(header.payload_size),
               sizeof(RecordHeader) + header.payload_size};
}

}  // namespace quillo::records
