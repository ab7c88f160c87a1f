#include "playback/dispatcher.h"

#include <array>

#include "capture/records/types.h"
#include "playback/actions.h"
#include "playback/current_objects.h"

namespace quillo {
namespace {

using namespace records;

struct DispatchRow {
  PlaybackAction action;  // null = the type is skipped
  uint32_t payload_size;  // smallest payload that the action gets
  PayloadRule rule;
};

using DispatchTable = std::array<DispatchRow, kLastPlayedType - kFirstPlayedType + 1>;

constexpr DispatchTable MakeDispatchTable() {
  DispatchTable table{};
#define QUILLO_ROW(name, type, size, needs, action) \
  table[type - kFirstPlayedType] = {action, size, needs};
  QUILLO_RECORD_LIST(QUILLO_ROW)
#undef QUILLO_ROW
  return table;
}

constexpr DispatchTable kTable = MakeDispatchTable();

}  // namespace

int32_t DispatchRecord(PlaybackContext& context, uint32_t type, Bytes payload) {
  const uint32_t index = type - kFirstPlayedType;
  if (index >= kTable.size()) return 0;
  const DispatchRow& row = kTable[index];
  if (row.action == nullptr) return 0;
  if (row.rule == kNeedsPayload && (payload.empty() || payload.size() < row.payload_size)) return 0;
  return row.action(context, payload);
}

void ReleaseDrawingObjects(PlaybackContext& context) {
  ReleasePen(context);
  ReleaseFont(context);
  ReleaseBrush(context);
}

}  // namespace quillo
