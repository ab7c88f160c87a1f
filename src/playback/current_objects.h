#pragma once

#include "base/windows.h"

#include "playback/context.h"

// Pen, brush and font of the page DC: at most one of each that playback made is alive. A new object
// replaces the old one in two steps, so that a failed creation leaves none.
namespace quillo {

/// Puts the object back that was in the DC before, then deletes the current one. Clears both
/// fields; does nothing when none is current.
template <typename Object>
void ReleaseCurrent(HDC dc, Object& current, HGDIOBJ& previous) {
  if (current == nullptr) return;
  SelectObject(dc, previous);
  DeleteObject(current);
  current = nullptr;
  previous = nullptr;
}

/// Takes ownership of `created` and selects it. Null (creation failed) changes nothing.
template <typename Object>
void MakeCurrent(HDC dc, Object created, Object& current, HGDIOBJ& previous) {
  if (created == nullptr) return;
  current = created;
  previous = SelectObject(dc, created);
}

inline void ReleasePen(PlaybackContext& context) {
  ReleaseCurrent(context.page_dc, context.current_pen, context.previous_pen);
}
inline void ReleaseBrush(PlaybackContext& context) {
  ReleaseCurrent(context.page_dc, context.current_brush, context.previous_brush);
}
inline void ReleaseFont(PlaybackContext& context) {
  ReleaseCurrent(context.page_dc, context.current_font, context.previous_font);
}

}  // namespace quillo
