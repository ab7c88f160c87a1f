#pragma once

#include <windows.h>

namespace quillo::app {

/// Mends the record that GDI has just made of a call of ExtTextOut with `count` characters:
///
/// - of glyph numbers without advances it records those of the characters with these numbers;
/// - of advances in both directions it records the first half.
///
/// `advances` are what GDI then passes to the device: a pair for each character, in pixels along
/// the device's axes, y downwards; or null.
void MendTextRecord(HDC dc, UINT count, const POINT* advances);

}  // namespace quillo::app
