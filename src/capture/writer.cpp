#include "capture/writer.h"

#include <cstring>

#include "base/arithmetic.h"
#include "base/system_owners.h"
#include "capture/records/framing.h"
#include "job/record_sink.h"

namespace quillo {

uint32_t EmitBytes(DEVICE_PDEV& device, const void* bytes, uint32_t size) {
  WriteJob(LivingJob(device), bytes, size, nullptr);
  return size;
}

bool EmitRecord(DEVICE_PDEV& device, uint32_t type, const void* payload, uint32_t size) {
  const records::RecordHeader header = {type, size};
  EmitBytes(device, &header, sizeof header);
  if (payload == nullptr || size == 0) return false;
  EmitBytes(device, payload, size);
  return true;
}

int32_t EmitRecordWhole(DEVICE_PDEV& device, uint32_t type, const void* payload, uint32_t size) {
  const records::RecordHeader header = {type, size};
  const auto total = CheckedAdd(size, static_cast<uint32_t>(sizeof header));
  if (!total) return 0;
  const HeapBlock record(*total);
  if (!record) return 0;
  std::memcpy(record.Get(), &header, sizeof header);
  std::memcpy(record.As<std::byte>() + sizeof header, payload, size);
  return WriteJob(LivingJob(device), record.Get(), *total, nullptr);
}

}  // namespace quillo
