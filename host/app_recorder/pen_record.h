#pragma once

#include <windows.h>

namespace quillo::app {

/// Mends the record that GDI has just made of an extended pen which is selected for the first time:
/// it lacks the pen's dashes and its brush. Pens that draw with a bitmap stay as they are.
void MendPenRecord(HDC dc, HPEN pen);

}  // namespace quillo::app
