#include "base/windows.h"

#include "playback/actions.h"

// Paths, lines and fills whose GDI calls take more than the record holds.
namespace quillo {

using namespace records;

// Always replaces the clip region, never combines with it.
int32_t PlaySelectClipPath(PlaybackContext& context, Bytes) {
  SelectClipPath(context.page_dc, RGN_COPY);
  return 1;
}

int32_t PlayMoveTo(PlaybackContext& context, Bytes payload) {
  const auto point = LoadOrZero<Point>(payload);
  MoveToEx(context.page_dc, point.x, point.y, nullptr);
  return 1;
}

int32_t PlayLineTo(PlaybackContext& context, Bytes payload) {
  const auto point = LoadOrZero<Point>(payload);
  LineTo(context.page_dc, point.x, point.y);
  return 1;
}

// Without a current brush GDI gets a null brush.
int32_t PlayFillRect(PlaybackContext& context, Bytes payload) {
  const auto rectangle = LoadOrZero<RECT>(payload);
  FillRect(context.page_dc, &rectangle, context.current_brush);
  return 1;
}

}  // namespace quillo
