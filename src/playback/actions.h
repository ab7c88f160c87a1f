#pragma once

#include <cstdint>

#include "base/bytes.h"
#include "playback/context.h"

// The actions of playback: what one record does on the context's page DC. `dispatcher.cpp` says
// which record gets which action; those that only pass the payload on to one GDI call are made by
// the templates of `gdi_actions.h`.
namespace quillo {

/// The dispatcher has made sure that the payload has the smallest size of its type; it may begin at
/// any address. Returns the result of DispatchRecord.
using PlaybackAction = int32_t (*)(PlaybackContext& context, Bytes payload);

// state.cpp
int32_t PlayNothing(PlaybackContext& context, Bytes payload);
int32_t PlayDibHeader(PlaybackContext& context, Bytes payload);
int32_t PlayDevMode(PlaybackContext& context, Bytes payload);
int32_t PlayPageValue(PlaybackContext& context, Bytes payload);
int32_t PlayRestoreDc(PlaybackContext& context, Bytes payload);
int32_t PlaySetWorldTransform(PlaybackContext& context, Bytes payload);
int32_t PlayResetWorldTransform(PlaybackContext& context, Bytes payload);
int32_t PlaySetMiterLimit(PlaybackContext& context, Bytes payload);
int32_t PlaySetBrushOrg(PlaybackContext& context, Bytes payload);

// pens_brushes.cpp
int32_t PlayCreatePen(PlaybackContext& context, Bytes payload);
int32_t PlayExtCreatePen(PlaybackContext& context, Bytes payload);
int32_t PlayCreateBrush(PlaybackContext& context, Bytes payload);

// paths.cpp
int32_t PlaySelectClipPath(PlaybackContext& context, Bytes payload);
int32_t PlayMoveTo(PlaybackContext& context, Bytes payload);
int32_t PlayLineTo(PlaybackContext& context, Bytes payload);
int32_t PlayFillRect(PlaybackContext& context, Bytes payload);

// blits.cpp, mask_blt.cpp, painted_bitmaps.cpp
int32_t PlayPatBlt(PlaybackContext& context, Bytes payload);
int32_t PlayBitBlt(PlaybackContext& context, Bytes payload);
int32_t PlayStretchBlt(PlaybackContext& context, Bytes payload);
int32_t PlayAlphaBlend(PlaybackContext& context, Bytes payload);
int32_t PlayMaskBlt(PlaybackContext& context, Bytes payload);
int32_t PlaySetDibitsToDevice(PlaybackContext& context, Bytes payload);
int32_t PlayPageBitmap(PlaybackContext& context, Bytes payload);

// text.cpp
int32_t PlayCreateFont(PlaybackContext& context, Bytes payload);
int32_t PlayExtTextOut(PlaybackContext& context, Bytes payload);
int32_t PlayTextRun(PlaybackContext& context, Bytes payload);

}  // namespace quillo
