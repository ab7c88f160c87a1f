#pragma once

#include "base/windows.h"

#include <cstdint>

#include "imaging/bitmap/bitmap_handle.h"
#include "imaging/painting/paint_method.h"

namespace quillo::imaging {

/// Class of colour depth of a device (QuantizeDepth); 24 for a metafile and without a DC.
uint32_t DeviceDepth(HDC dc);

/// The method for painting the record on a device of this DeviceDepth in the thread's display mode.
PaintMethod PaintMethodFor(uint32_t device_depth, const BitmapHandle& record);

/// The colours that PaintMethod::kDither uses on a device of `depth` bits (1, 4 or 8); the thread's
/// display mode decides between two of 8 bits. Returns their number and fills that many entries.
uint32_t FillDitherPalette(uint32_t depth, PaletteEntry (&palette)[256]);

/// 256 greys: the record's 8-bit lookup table, or the identity when it has none.
void FillLookupPalette(const BitmapHandle& record, PaletteEntry (&palette)[256]);

}  // namespace quillo::imaging
