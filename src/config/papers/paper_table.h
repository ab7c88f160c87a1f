#pragma once

#include <cstdint>
#include <span>

#include "config/papers/paper_units.h"

namespace quillo {

/// Paper numbers: the system's DMPAPER_ constants of the same names.
enum PaperNumber : int16_t {
  kPaperLetter = 1,
  kPaperLetterSmall,
  kPaperTabloid,
  kPaperLedger,
  kPaperLegal,
  kPaperStatement,
  kPaperExecutive,
  kPaperA3,
  kPaperA4,
  kPaperA4Small,
  kPaperA5,
  kPaperB4,
  kPaperB5,
  kPaperFolio,
  kPaperQuarto,
  kPaper10x14,
  kPaper11x17,
  kPaperNote,
  kPaperEnvelope9,
  kPaperEnvelope10,
  kPaperEnvelope11,
  kPaperEnvelope12,
  kPaperEnvelope14,
  kPaperCSheet,
  kPaperDSheet,
  kPaperESheet,
  kPaperEnvelopeDl,
  kPaperEnvelopeC5,
  kPaperEnvelopeC3,
  kPaperEnvelopeC4,
  kPaperEnvelopeC6,
  kPaperEnvelopeC65,
  kPaperEnvelopeB4,
  kPaperEnvelopeB5,
  kPaperEnvelopeB6,
  kPaperEnvelopeItaly,
  kPaperEnvelopeMonarch,
  kPaperEnvelopePersonal,
  kPaperFanfoldUs,
  kPaperFanfoldGerman,
  kPaperFanfoldGermanLegal,
  kPaperUser = 256,  // its size is in the device mode; custom papers come after it
};

/// A standard form.
struct PaperForm {
  PaperNumber paper;        // dmPaperSize
  uint32_t identifiers[2];  // 1 to 79, for other modules of the product; not used here
  SizeClass unit_class;     // of the size: kSizeInches or kSizeMillimetres
  Fraction width;           // upright
  Fraction height;
};

/// All standard forms, in the order in which they are searched.
///
/// Compatibility: kPaperB4, kPaper10x14 and kPaper11x17 are not among them and get the fallback
/// size. Kept for the stored settings and pages of installed printers.
std::span<const PaperForm> StandardForms();

/// The standard form of a paper number, or null.
const PaperForm* FindStandardForm(int16_t paper);

}  // namespace quillo
