#include <algorithm>

#include "capture/records/framing.h"
#include "capture/records/types.h"
#include "job/job.h"
#include "playback/dispatcher.h"

namespace quillo {

namespace {

/// Makes room for a payload as soon as its header tells the size: a large one that comes in pieces
/// is not moved from block to block.
void ReservePayload(CBuffer& buffer) {
  const Bytes unread = buffer.Unread();
  if (unread.size() != sizeof(records::RecordHeader)) return;
  buffer.Reserve(LoadOrZero<records::RecordHeader>(unread).payload_size);
}

/// Plays every whole record; an incomplete one stays until a later piece completes it.
void PlayWholeRecords(CQloPrinter& job) {
  CBuffer& buffer = job.record_buffer;
  while (const auto frame = records::NextFrame(buffer.Unread())) {
    if ((frame->type & records::kPlayedTypeBits) == records::kPlayedTypeBits) {
      DispatchRecord(job.playback, frame->type, frame->payload);
    }
    buffer.Consume(static_cast<uint32_t>(frame->size));
  }
  // No record lives longer than its dispatch: a page's memory is that of its largest record.
  if (buffer.Unread().empty()) {
    buffer.Reset();
  } else {
    ReservePayload(buffer);
  }
}

/// Drops the record that `piece`, for which there is no memory, belongs to: what is buffered of it,
/// the piece, and what is still to come. The records behind it are played as ever.
void DropRecord(CQloPrinter& job, Bytes piece) {
  const Bytes begun = job.record_buffer.Unread();
  // Every header comes whole, alone or in front of its payload.
  const auto header = LoadOrZero<records::RecordHeader>(begun.empty() ? piece : begun);
  const uint64_t size = sizeof(header) + uint64_t{header.payload_size};
  const uint64_t come = begun.size() + piece.size();
  job.lost_bytes = size > come ? size - come : 0;
  job.record_buffer.Reset();
}

}  // namespace

int32_t WriteJob(CQloPrinter* job, const void* bytes, uint32_t size, uint32_t* written) {
  if (job != nullptr) {
    ++job->record_count;
    if (job->lost_bytes != 0) {
      job->lost_bytes -= std::min<uint64_t>(job->lost_bytes, size);
    } else if (job->record_buffer.Append(bytes, size) == size) {
      PlayWholeRecords(*job);
    } else {
      DropRecord(*job, Bytes(static_cast<const std::byte*>(bytes), size));
    }
  }
  if (written != nullptr) *written = size;
  return 1;
}

}  // namespace quillo
