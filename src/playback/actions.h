#pragma once

#include <cstdint>

#include "base/bytes.h"
#include "capture/records/record_list.h"
#include "playback/context.h"

namespace quillo {

/// What one record type does on the context's page DC. The dispatcher has made sure that the
/// payload holds the type's smallest size; it may stand at any address. Returns what DispatchRecord
/// is to answer.
using PlaybackAction = int32_t (*)(PlaybackContext& context, Bytes payload);

// One declaration for every action of the record list; types that share an action repeat it.
#define QUILLO_DECLARE_ACTION(name, type, size, needs, action) \
  int32_t action(PlaybackContext& context, Bytes payload);
QUILLO_RECORD_LIST(QUILLO_DECLARE_ACTION)
#undef QUILLO_DECLARE_ACTION

}  // namespace quillo
