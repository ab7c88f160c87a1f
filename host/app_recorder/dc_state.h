#pragma once

#include <cstddef>
#include <windows.h>

namespace quillo::app {

/// What a DC's drawing depends on, but for its path, its text justification and mapper flags, which
/// GDI does not tell. Owns its regions; the objects are the program's.
struct DcState {
  static constexpr size_t kNumbers = 12;
  static constexpr size_t kColours = 2;

  int numbers[kNumbers];
  int colours[kColours];
  SIZE window_extent, viewport_extent;
  POINT window_origin, viewport_origin;
  POINT position, brush_origin;
  XFORM world;
  FLOAT miter_limit;
  HGDIOBJ pen, brush, font, palette;
  HRGN clip, meta_clip;  // device pixels; null: none
};

/// The states of a DC: those that are saved, the oldest first, and the one that holds.
struct DcStates {
  static constexpr int kMost = 64;

  int count = 0;
  DcState states[kMost];
};

/// Takes the states off a DC that does not record. Saved states beyond the limit are lost.
void TakeStates(HDC dc, DcStates& states);

/// Gives the DC the states back, while it records them: what differs from those of a new DC. Frees
/// what they own.
void GiveStates(HDC dc, DcStates& states);

}  // namespace quillo::app
