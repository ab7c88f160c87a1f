#include "config/papers/custom_paper_list.h"

#include <bitset>

namespace quillo {

bool CanBePrintedOn(const CustomPaper& paper) {
  return paper.number >= kFirstCustomPaper && paper.number <= kLastCustomPaper &&
         paper.length != 0 && paper.width != 0;
}

CustomPaper* Join(CustomPaper* head, CustomPaper* tail) {
  CustomPaper** end = &head;
  while (*end != nullptr) end = &(*end)->next;
  *end = tail;
  return head;
}

CustomPaper* TakeDuplicates(CustomPaper* head) {
  std::bitset<65536> seen;
  CustomPaper* taken = nullptr;
  for (CustomPaper** link = &head; *link != nullptr;) {
    CustomPaper* paper = *link;
    if (!seen[paper->number]) {
      seen[paper->number] = true;
      link = &paper->next;
      continue;
    }
    *link = paper->next;
    paper->next = taken;
    taken = paper;
  }
  return taken;
}

SizeClass SizeClassOf(const CustomPaper& paper) {
  // Compatibility: sizes are stored in tenths of a millimetre, yet those of this kind count as
  // tenths of an inch. Kept for the stored papers of installed printers.
  return paper.kind == kInchPaper ? kSizeTenthsOfInch : kSizeTenthsOfMillimetre;
}

}  // namespace quillo
