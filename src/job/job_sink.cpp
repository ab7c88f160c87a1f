#include "capture/records/framing.h"
#include "capture/records/types.h"
#include "job/job.h"
#include "playback/dispatcher.h"

namespace quillo {

namespace {

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
  if (buffer.Unread().empty()) buffer.Reset();
}

}  // namespace

int32_t WriteJob(CQloPrinter* job, const void* bytes, uint32_t size, uint32_t* written) {
  if (job != nullptr) {
    ++job->record_count;
    job->record_buffer.Append(bytes, size);
    PlayWholeRecords(*job);
  }
  if (written != nullptr) *written = size;
  return 1;
}

}  // namespace quillo
