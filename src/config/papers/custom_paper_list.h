#pragma once

#include <cstdint>

#include "config/papers/paper_units.h"

namespace quillo {

/// A paper that the user defined, in a list of them.
struct CustomPaper {
  wchar_t name[64];   // ends in a terminator
  uint16_t number;    // dmPaperSize, above kPaperUser
  int16_t kind;       // a PaperKind; any other value stands for kMetricPaper
  uint16_t length;    // tenths of a millimetre
  uint16_t width;     // tenths of a millimetre
  CustomPaper* next;  // null at the end
};

enum PaperKind : int16_t {
  kMetricPaper = 0,
  kInchPaper = 1,          // its size is taken for tenths of an inch
  kDeletedPaper = 0x1000,  // not saved
};

/// The numbers of custom papers that documents can ask for: those after kPaperUser.
inline constexpr uint16_t kFirstCustomPaper = 257;
inline constexpr uint16_t kLastCustomPaper = 32767;

/// Whether documents can ask for the paper, and it has a size.
bool CanBePrintedOn(const CustomPaper& paper);

/// Appends one list to another; either may be null. Returns the whole.
CustomPaper* Join(CustomPaper* head, CustomPaper* tail);

/// Takes out every paper whose number an earlier one of the list has. Returns those taken out, as a
/// list.
CustomPaper* TakeDuplicates(CustomPaper* head);

/// The unit in which the size of a custom paper counts.
SizeClass SizeClassOf(const CustomPaper& paper);

}  // namespace quillo
