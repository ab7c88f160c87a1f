#pragma once

#include <array>
#include <cstdint>

#include "host/emf_format/payload_reader.h"
#include "host/emf_format/record_types.h"

namespace quillo::host::emf {

class EmfPlayer;

/// Plays one record. Reads all of it first: when the reader is not ok() afterwards, nothing is
/// drawn and the record counts as damaged.
using Handler = void (*)(EmfPlayer& player, PayloadReader& record);

/// The handler of each record type; null for types that are not carried to the page.
using HandlerTable = std::array<Handler, kRecordTypeEnd>;

const HandlerTable& RecordHandlers();

// One for each file of handlers.
void AddStateHandlers(HandlerTable& table);
void AddObjectHandlers(HandlerTable& table);
void AddLineHandlers(HandlerTable& table);
void AddShapeHandlers(HandlerTable& table);
void AddPathHandlers(HandlerTable& table);
void AddClipHandlers(HandlerTable& table);
void AddRegionHandlers(HandlerTable& table);
void AddBlitHandlers(HandlerTable& table);
void AddDibHandlers(HandlerTable& table);
void AddGradientHandlers(HandlerTable& table);
void AddTextHandlers(HandlerTable& table);

}  // namespace quillo::host::emf
