#pragma once

#include <cstdint>

#include "job/job.h"

namespace quillo {

/// The record sink: takes a piece of the stream and plays every record that it completes. Always 1;
/// `written` (may be null) gets `size`. A null job takes nothing.
int32_t WriteJob(CQloPrinter* job, const void* bytes, uint32_t size, uint32_t* written);

}  // namespace quillo
