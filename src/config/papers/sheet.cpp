#include "config/papers/sheet.h"

#include <utility>

#include "config/papers/paper_table.h"

namespace quillo {

namespace {

constexpr ExactSize kFallbackSize = {{2159, 1}, {2794, 1}, kSizeTenthsOfMillimetre};

ExactSize UprightSize(const PaperChoice& choice, const CustomPaper* custom) {
  if (choice.paper == kPaperUser) {
    return {{choice.width, 1}, {choice.length, 1}, kSizeTenthsOfMillimetre};
  }
  if (choice.paper > kPaperUser) {
    if (custom == nullptr) return kFallbackSize;
    return {{custom->width, 1}, {custom->length, 1}, SizeClassOf(*custom)};
  }
  const PaperForm* form = FindStandardForm(choice.paper);
  if (form == nullptr) return kFallbackSize;
  return {form->width, form->height, form->unit_class};
}

}  // namespace

ExactSize SizeOf(const PaperChoice& choice, const CustomPaper* custom) {
  ExactSize size = UprightSize(choice, custom);
  if (choice.landscape) std::swap(size.width, size.height);
  return size;
}

Margins MarginsOf(const PrivatePart& own, PaperUnit unit, int32_t resolution) {
  if (own.margins_given == 0) return {};
  const auto convert = [&](StoredMargin margin) {
    return ConvertMargin(margin, own.margin_unit, unit, resolution);
  };
  return {convert(own.left), convert(own.top), convert(own.right), convert(own.bottom)};
}

Sheet MeasureSheet(const ExactSize& size, const PrivatePart& own, int32_t resolution) {
  const auto measure = [&](PaperUnit unit) {
    const auto convert = [&](Fraction length) {
      return ConvertLength(length, size.unit_class, static_cast<uint32_t>(unit), resolution);
    };
    const Extent whole = {convert(size.width), convert(size.height)};
    const Margins margins = MarginsOf(own, unit, resolution);
    return SheetArea{whole, margins, SubtractMargins(whole, margins)};
  };
  return {measure(PaperUnit::kDevicePixels), measure(PaperUnit::kMillimetres),
          measure(PaperUnit::kTenthsOfMillimetre)};
}

}  // namespace quillo
