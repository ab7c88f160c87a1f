#pragma once

#include "base/ddi.h"

#include <cstdint>

#include "capture/records/types.h"
#include "driver/device/device.h"

// The only way into a job's record sink. A device without a job takes records and drops them.
namespace quillo {

/// Hands one piece of a record to the sink, once. Always reports `size` as written: the stream is
/// assumed to be written whole.
uint32_t EmitBytes(DEVICE_PDEV& device, const void* bytes, uint32_t size);

/// Hands header and payload to the sink in two pieces. True when there was a payload.
bool EmitRecord(DEVICE_PDEV& device, uint32_t type, const void* payload, uint32_t size);

/// A record without payload.
inline void EmitRecord(DEVICE_PDEV& device, uint32_t type) { EmitRecord(device, type, nullptr, 0); }

/// Hands the record to the sink in one piece. The sink's result: 1, or 0 when the copy could not be
/// allocated.
int32_t EmitRecordWhole(DEVICE_PDEV& device, uint32_t type, const void* payload, uint32_t size);

}  // namespace quillo
