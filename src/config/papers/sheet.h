#pragma once

#include <cstdint>

#include "config/papers/custom_paper_list.h"
#include "config/papers/paper_units.h"

// The sheet that a device mode asks for: pure arithmetic, once it is known what the mode holds.
namespace quillo {

/// The members of a device mode that choose its paper.
struct PaperChoice {
  int16_t paper;  // dmPaperSize
  bool landscape = false;
  int16_t width = 0;  // 0.1 mm; of kPaperUser only
  int16_t length = 0;
};

/// The size of a paper as it lies in the printer. `custom` is the custom paper of its number, or
/// null. An unknown number gets the size of Letter.
ExactSize SizeOf(const PaperChoice& choice, const CustomPaper* custom);

/// A sheet in one unit.
struct SheetArea {
  Extent size;
  Margins margins;
  Extent printable;  // the size less the margins
};

/// The sheet of a device mode. Resolved once, when the mode is set.
struct Sheet {
  SheetArea pixels;  // at the device's resolution
  SheetArea millimetres;
  SheetArea tenths;  // of a millimetre
};

/// The margins that a device mode stores; `resolution` in dots per inch.
Margins MarginsOf(const PrivatePart& own, PaperUnit unit, int32_t resolution);

/// Measures a sheet; `resolution` in dots per inch.
Sheet MeasureSheet(const ExactSize& size, const PrivatePart& own, int32_t resolution);

}  // namespace quillo
