#pragma once

#include <cstdint>
#include <span>

#include "config/papers/paper_units.h"

namespace quillo {

/// A standard form.
struct PaperForm {
  int16_t paper;            // dmPaperSize
  uint32_t identifiers[2];  // numbers 1 to 79; what they stand for is not used here
  uint32_t inches;          // 1: the size is in inches; 0: in millimetres
  Fraction width;           // portrait
  Fraction height;
};

/// All standard forms, in the order in which they are searched. Papers 12, 16 and 17 are not among
/// them, on purpose.
std::span<const PaperForm> StandardForms();

/// The standard form of a paper number, or null.
const PaperForm* FindStandardForm(int16_t paper);

}  // namespace quillo
