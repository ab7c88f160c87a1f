#include "ui/papers.h"

#include <winspool.h>

#include "base/module_instance.h"
#include "base/text.h"
#include "config/papers/paper_table.h"
#include "config/settings/printer_settings.h"

namespace quillo {

namespace {

int32_t Tenths(Fraction length, SizeClass size_class) {
  return ConvertLength(length, size_class, static_cast<uint32_t>(PaperUnit::kTenthsOfMillimetre),
                       0);
}

}  // namespace

void OpenPrintersForUse(const wchar_t* printer) {
  if (printer == nullptr) return;
  const PrinterSettings first(printer, PRINTER_ACCESS_USE);
}

OfferedPapers::OfferedPapers(const wchar_t* printer) {
  if (printer == nullptr) return;
  OpenPrintersForUse(printer);
  LoadCustomPapers(printer, custom_);
}

size_t OfferedPapers::StandardCount() { return StandardForms().size(); }

OfferedPaper OfferedPapers::Standard(size_t index) {
  const PaperForm& form = StandardForms()[index];
  OfferedPaper paper{
      form.paper, {Tenths(form.width, form.unit_class), Tenths(form.height, form.unit_class)}, {}};
  LoadStringW(g_module_instance, form.identifiers[0], paper.name, ARRAYSIZE(paper.name));
  return paper;
}

OfferedPaper OfferedPapers::Custom(const CustomPaper& custom) {
  const SizeClass size_class = SizeClassOf(custom);
  OfferedPaper paper{
      static_cast<int16_t>(custom.number),
      {Tenths({custom.width, 1}, size_class), Tenths({custom.length, 1}, size_class)},
      {}};
  CopyPadded(paper.name, custom.name, ARRAYSIZE(paper.name));
  return paper;
}

}  // namespace quillo
