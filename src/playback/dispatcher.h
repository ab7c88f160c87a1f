#pragma once

#include <cstdint>

#include "base/bytes.h"
#include "playback/context.h"

namespace quillo {

/// Plays one record onto the context's page DC. 1 when the record was played, 0 when it was ignored
/// (unknown type, too short a payload) or its drawing call failed.
int32_t DispatchRecord(PlaybackContext& context, uint32_t type, Bytes payload);

/// Deselects and deletes the current pen, font and brush, in this order.
void ReleaseDrawingObjects(PlaybackContext& context);

/// Releases them, and the memory that is kept from one picture of a page for the next.
void EndPagePlayback(PlaybackContext& context);

}  // namespace quillo
