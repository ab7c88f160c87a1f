#pragma once

#include "base/ddi.h"

#include <cstdint>

#include "capture/records/types.h"
#include "driver/device/device.h"

// The only way into a job's record sink. A device without a job takes records and drops them.
namespace quillo {

/// Hands one piece of a record to the sink.
///
/// Compatibility: returns `size` whatever the sink accepted, and never retries with the rest; what
/// a stream holds after a short write stays as it always was.
uint32_t EmitBytes(DEVICE_PDEV& device, const void* bytes, uint32_t size);

/// Hands header and payload to the sink in two pieces. True when there was a payload.
bool EmitRecord(DEVICE_PDEV& device, uint32_t type, const void* payload, uint32_t size);

/// A record without payload.
inline void EmitRecord(DEVICE_PDEV& device, uint32_t type) { EmitRecord(device, type, nullptr, 0); }

/// Hands the record to the sink in one piece. Returns the sink's result: 1, or 0 when the
/// copy could not be allocated.
int32_t EmitRecordWhole(DEVICE_PDEV& device, uint32_t type, const void* payload, uint32_t size);

}  // namespace quillo
