#include "host/printer/ppd.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "config/papers/paper_table.h"
#include "host/printer/paper_names.h"

namespace quillo::host {

namespace {

/// The length in points (1/72 inch) for a side of `tenths` of a millimetre: the pixels that cover
/// the next whole millimetre, and half a pixel more, so that rounding loses none.
double Points(int tenths, int dpi) {
  const int millimetres = (tenths + 9) / 10;
  const int pixels = millimetres * dpi * 10 / 254 + 1;
  return (pixels + 0.5) * 72 / dpi;
}

void AppendPaper(std::string& ppd, std::string_view key, PaperSize size, int dpi) {
  const double width = Points(size.width, dpi);
  const double height = Points(size.height, dpi);
  char text[400];
  const int keyed = static_cast<int>(key.size());
  const char* name = key.data();
  std::snprintf(text, sizeof text,
                "*PageSize %.*s: \"\"\n"
                "*ImageableArea %.*s: \"0 0 %.4f %.4f\"\n"
                "*PaperDimension %.*s: \"%.4f %.4f\"\n",
                keyed, name, keyed, name, width, height, keyed, name, width, height);
  ppd += text;
}

constexpr int kLastUserPaper = 2000;

/// Tenths of a millimetre, rounded up.
int Tenths(Fraction length, bool inches) {
  const int numerator = length.numerator * (inches ? 254 : 10);
  return (numerator + length.denominator - 1) / length.denominator;
}

PaperSize SizeOf(const PaperForm& form) {
  const bool inches = form.unit_class == kSizeInches;
  return {Tenths(form.width, inches), Tenths(form.height, inches)};
}

}  // namespace

std::string MakePpd(int dpi, const std::map<int, PaperSize>& user_sizes) {
  const std::string number = std::to_string(dpi);
  const std::string resolution = number + "x" + number + "dpi";
  std::string ppd =
      "*PPD-Adobe: \"4.3\"\n"
      "*FormatVersion: \"4.3\"\n"
      "*NickName: \"VORNIX Quillo 6\"\n"
      "*LanguageLevel: \"3\"\n"
      "*ColorDevice: True\n"
      "*LandscapeOrientation: Plus90\n"
      "*DefaultResolution: " +
      resolution + "\n*Resolution " + resolution + ": \"\"\n*DefaultPageSize: Letter\n";
  for (const PaperForm& form : StandardForms()) {
    const auto name = std::ranges::find(PaperNames(), form.paper, &PaperName::paper);
    if (name != PaperNames().end()) AppendPaper(ppd, name->ppd_key, SizeOf(form), dpi);
  }
  // Wine numbers unknown keys from DMPAPER_USER on, in their order: numbers in between need a paper
  // as well. Papers above kLastUserPaper take the default sheet, whose scale is the same.
  int next = DMPAPER_USER;
  for (const auto& [paper, size] : user_sizes) {
    if (paper > kLastUserPaper) break;
    for (; next <= paper; ++next) AppendPaper(ppd, "User" + std::to_string(next), size, dpi);
  }
  return ppd;
}

}  // namespace quillo::host
