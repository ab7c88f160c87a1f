#include "config/custom_papers.h"

namespace quillo {

bool FindCustomPaper(const DEVMODEW&, CustomPaper&) { return false; }

SizeClass SizeClassOf(const CustomPaper& paper) {
  return paper.kind == 1 ? kSizeTenthsOfInch : kSizeTenthsOfMillimetre;
}

}  // namespace quillo
