#include "job/record_sink.h"

#include <algorithm>

#include "capture/records/framing.h"
#include "capture/records/types.h"
#include "playback/dispatcher.h"

namespace quillo {

namespace {

using records::RecordHeader;

void Play(CQloPrinter& job, uint32_t type, Bytes payload) {
  constexpr uint32_t kPlayed = records::kPlayedTypeBits;
  if ((type & kPlayed) == kPlayed) DispatchRecord(job.playback, type, payload);
}

/// Plays every whole record; an incomplete one stays buffered until a later piece completes it.
void PlayWholeRecords(CQloPrinter& job) {
  CBuffer& buffer = job.record_buffer;
  while (const auto frame = records::NextFrame(buffer.Unread())) {
    Play(job, frame->type, frame->payload);
    buffer.Consume(static_cast<uint32_t>(frame->size));
  }
  // A record is dropped once it was dispatched: a page takes the memory of its largest record.
  if (buffer.Unread().empty()) buffer.Reset();
}

/// Drops the record to which `piece`, for which there is no memory, belongs: what is buffered of
/// it, the piece, and what is still to come. Later records are played as usual.
void DropRecord(CQloPrinter& job, Bytes piece) {
  const Bytes begun = job.record_buffer.Unread();
  // A header is never split; it comes alone or followed by its payload.
  const auto header = LoadOrZero<RecordHeader>(begun.empty() ? piece : begun);
  const uint64_t size = sizeof(header) + uint64_t{header.payload_size};
  const uint64_t come = begun.size() + piece.size();
  job.lost_bytes = size > come ? size - come : 0;
  job.record_buffer.Reset();
}

void Take(CQloPrinter& job, Bytes piece) {
  CBuffer& buffer = job.record_buffer;
  const Bytes begun = buffer.Unread();
  if (begun.size() == sizeof(RecordHeader)) {
    const auto header = LoadOrZero<RecordHeader>(begun);
    if (header.payload_size == piece.size()) {
      // Most payloads come in one piece, which is played in place: pictures are not copied again.
      buffer.Reset();
      Play(job, header.type, piece);
      return;
    }
    // Room for the whole payload, so that a large one is not reallocated piece by piece.
    buffer.Reserve(header.payload_size);
  }
  if (buffer.Append(piece.data(), static_cast<uint32_t>(piece.size())) == piece.size()) {
    PlayWholeRecords(job);
  } else {
    DropRecord(job, piece);
  }
}

}  // namespace

int32_t WriteJob(CQloPrinter* job, const void* bytes, uint32_t size, uint32_t* written) {
  if (job != nullptr) {
    ++job->record_count;
    if (job->lost_bytes != 0) {
      job->lost_bytes -= std::min<uint64_t>(job->lost_bytes, size);
    } else {
      Take(*job, Bytes(static_cast<const std::byte*>(bytes), size));
    }
  }
  if (written != nullptr) *written = size;
  return 1;
}

}  // namespace quillo
