#pragma once

#include "base/windows.h"

#include <cstdint>

#include "config/paper_units.h"

namespace quillo {

/// A paper that the user defined.
struct CustomPaper {
  wchar_t name[64];  // ends in a terminator
  uint16_t number;   // dmPaperSize, above 256
  int16_t kind;      // 1: sizes count as tenths of an inch; any other: as tenths of a millimetre
  uint16_t length;   // tenths of a millimetre
  uint16_t width;    // tenths of a millimetre
};

/// The paper that dmPaperSize selects among the custom papers of the printer dmDeviceName; false
/// when there is none.
bool FindCustomPaper(const DEVMODEW& mode, CustomPaper& out);

/// How the paper geometry reads the sizes of a custom paper. They are stored in tenths of a
/// millimetre all the same: meant so.
SizeClass SizeClassOf(const CustomPaper& paper);

}  // namespace quillo
