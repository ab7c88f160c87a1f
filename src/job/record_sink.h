#pragma once

#include <cstdint>

#include "job/job.h"

namespace quillo {

/// The record sink: appends a piece of the stream and plays every record that it completes. Always
/// 1; `written` (may be null) receives `size`. For a null job nothing is played.
int32_t WriteJob(CQloPrinter* job, const void* bytes, uint32_t size, uint32_t* written);

}  // namespace quillo
