#include "base/windows.h"

#include "playback/actions.h"

namespace quillo {

using namespace records;

int32_t PlaySetTextColor(PlaybackContext& context, MutableBytes payload) {
  SetTextColor(context.page_dc, LoadOrZero<COLORREF>(payload));
  return 1;
}

int32_t PlaySetTextAlign(PlaybackContext& context, MutableBytes payload) {
  SetTextAlign(context.page_dc, LoadOrZero<uint32_t>(payload));
  return 1;
}

int32_t PlayTextRun(PlaybackContext& context, MutableBytes payload) {
  context.run_list.Append(LoadOrZero<TextRunPayload>(payload).glyph_count);
  return 1;
}

// Fonts and characters are not drawn yet.
int32_t PlayCreateFont(PlaybackContext&, MutableBytes) { return 0; }
int32_t PlayExtTextOut(PlaybackContext&, MutableBytes) { return 0; }

}  // namespace quillo
