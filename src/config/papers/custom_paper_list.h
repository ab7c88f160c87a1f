#pragma once

#include <cstdint>

#include "config/papers/paper_units.h"

namespace quillo {

/// A paper that the user defined, in a list of them.
struct CustomPaper {
  wchar_t name[64];   // ends in a terminator
  uint16_t number;    // dmPaperSize, above 256
  int16_t kind;       // 1: its size counts as tenths of an inch; kDeletedPaper: not saved; any
                      // other: as tenths of a millimetre
  uint16_t length;    // tenths of a millimetre
  uint16_t width;     // tenths of a millimetre
  CustomPaper* next;  // null at the end
};

inline constexpr int16_t kDeletedPaper = 0x1000;

/// The numbers of custom papers that documents can ask for.
inline constexpr uint16_t kFirstCustomPaperNumber = 257;
inline constexpr uint16_t kLastCustomPaperNumber = 32767;

/// Whether documents can ask for the paper, and it has a size.
bool CanBePrintedOn(const CustomPaper& paper);

/// Puts one list behind another; either may be null. Returns the whole.
CustomPaper* Join(CustomPaper* head, CustomPaper* tail);

/// Takes every paper out whose number an earlier one of the list has. Returns those taken out, as a
/// list.
CustomPaper* TakeDuplicates(CustomPaper* head);

/// How the paper geometry reads the size of a custom paper. It is stored in tenths of a millimetre
/// all the same: meant so.
SizeClass SizeClassOf(const CustomPaper& paper);

}  // namespace quillo
