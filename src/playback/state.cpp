#include "base/windows.h"

#include <algorithm>
#include <cstring>

#include "playback/actions.h"
#include "playback/dispatcher.h"

// Records that set the state of the page DC or of the playback context.
namespace quillo {

using namespace records;

int32_t PlayNothing(PlaybackContext&, Bytes) { return 1; }

int32_t PlayDibHeader(PlaybackContext& context, Bytes payload) {
  const size_t size = std::min(payload.size(), sizeof context.band_header);
  std::copy_n(payload.begin(), size, context.band_header);
  return 1;
}

int32_t PlayDevMode(PlaybackContext& context, Bytes payload) {
  DeviceMode* const settings = context.job.device_settings;
  if (settings != nullptr && payload.data() != nullptr) {
    std::memcpy(settings, payload.data(), std::min(payload.size(), sizeof *settings));
  }
  return 1;
}

int32_t PlayPageValue(PlaybackContext& context, Bytes payload) {
  context.page_value = LoadOrZero<Point>(payload);
  return 1;
}

int32_t PlayRestoreDc(PlaybackContext& context, Bytes) {
  ReleaseDrawingObjects(context);
  RestoreDC(context.page_dc, -1);
  return 1;
}

int32_t PlaySetWorldTransform(PlaybackContext& context, Bytes payload) {
  const auto transform = LoadOrZero<XFORM>(payload);
  static_assert(sizeof(XFORM) == sizeof(Transform));
  SetGraphicsMode(context.page_dc, GM_ADVANCED);
  SetWorldTransform(context.page_dc, &transform);
  context.world_transform = transform;
  return 1;
}

// Compatibility: the context's copy keeps the transform last set, and font look-up goes on reading
// it; kept for pages.
int32_t PlayResetWorldTransform(PlaybackContext& context, Bytes) {
  ModifyWorldTransform(context.page_dc, nullptr, MWT_IDENTITY);
  SetGraphicsMode(context.page_dc, GM_COMPATIBLE);
  return 1;
}

int32_t PlaySetMiterLimit(PlaybackContext& context, Bytes payload) {
  SetMiterLimit(context.page_dc, LoadOrZero<float>(payload), nullptr);
  return 1;
}

int32_t PlaySetBrushOrg(PlaybackContext& context, Bytes payload) {
  const auto origin = LoadOrZero<Point>(payload);
  SetBrushOrgEx(context.page_dc, origin.x, origin.y, nullptr);
  return 1;
}

}  // namespace quillo
