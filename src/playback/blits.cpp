#include "base/windows.h"

#include "playback/actions.h"
#include "playback/rectangles.h"

// Blits onto the page DC.
namespace quillo {

using namespace records;

int32_t PlayPatBlt(PlaybackContext& context, MutableBytes payload) {
  const auto record = LoadOrZero<PatBltPayload>(payload);
  const Rect& to = record.destination;
  return PatBlt(context.page_dc, to.left, to.top, Width(to), Height(to), record.rop);
}

// Bitmaps are not drawn yet.
int32_t PlayPageBitmap(PlaybackContext&, MutableBytes) { return 0; }
int32_t PlayMaskBlt(PlaybackContext&, MutableBytes) { return 0; }
int32_t PlayBitBlt(PlaybackContext&, MutableBytes) { return 0; }
int32_t PlaySetDibitsToDevice(PlaybackContext&, MutableBytes) { return 0; }
int32_t PlayStretchBlt(PlaybackContext&, MutableBytes) { return 0; }
int32_t PlayAlphaBlend(PlaybackContext&, MutableBytes) { return 0; }

}  // namespace quillo
