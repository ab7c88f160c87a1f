#pragma once

#include "base/windows.h"

#include "host/preview/sheet_bitmap.h"

namespace quillo::host {

/// Draws a page that the driver made onto the whole of a canvas, as readers should see it:
/// pictures are reduced smoothly, whatever stretch mode the page asks for, since modes that suit
/// dots of 1/600 inch leave blots on a screen. False when there is no DC.
bool PlayPage(HENHMETAFILE page, SheetBitmap& sheet);

}  // namespace quillo::host
