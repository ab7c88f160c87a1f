#include "config/papers/paper_geometry.h"

#include "config/papers/custom_papers.h"
#include "config/papers/paper_table.h"

namespace quillo {

namespace {

static_assert(int{kPaperLetter} == DMPAPER_LETTER && int{kPaperA4} == DMPAPER_A4);
static_assert(int{kPaperFanfoldGermanLegal} == DMPAPER_FANFOLD_LGL_GERMAN);
static_assert(int{kPaperUser} == DMPAPER_USER);

ExactSize PaperSizeOf(const DEVMODEW& mode) {
  const PaperChoice choice = {mode.dmPaperSize, mode.dmOrientation == DMORIENT_LANDSCAPE,
                              mode.dmPaperWidth, mode.dmPaperLength};
  CustomPaper custom;
  const bool is_custom = mode.dmPaperSize > DMPAPER_USER && FindCustomPaper(mode, custom);
  return SizeOf(choice, is_custom ? &custom : nullptr);
}

}  // namespace

void UseInchMargins(DeviceMode& mode) { mode.own.margin_unit = kMarginInches; }

Sheet ResolveSheet(const DeviceMode& mode) {
  return MeasureSheet(PaperSizeOf(mode.pub), mode.own, ResolutionOf(mode.pub));
}

void LookUpPaperSize(const DeviceMode& mode, Fraction* width, Fraction* height,
                     uint32_t* unit_class) {
  const ExactSize size = PaperSizeOf(mode.pub);
  if (width != nullptr) *width = size.width;
  if (height != nullptr) *height = size.height;
  if (unit_class != nullptr) *unit_class = size.unit_class;
}

int ConvertPaperSize(const DeviceMode* mode, const Fraction* width, const Fraction* height,
                     uint32_t source_class, uint32_t target_unit, Extent* out) {
  const bool pixels = target_unit == static_cast<uint32_t>(PaperUnit::kDevicePixels);
  if (mode == nullptr && pixels) return 0;
  if (width == nullptr || height == nullptr || out == nullptr) return 0;
  const int32_t resolution = pixels ? ResolutionOf(mode->pub) : int32_t{};
  out->width = ConvertLength(*width, source_class, target_unit, resolution);
  out->height = ConvertLength(*height, source_class, target_unit, resolution);
  return 1;
}

void GetMargins(DeviceMode& mode, Margins* out, uint32_t target_unit) {
  if (out == nullptr) return;
  UseInchMargins(mode);
  if (target_unit > static_cast<uint32_t>(PaperUnit::kTenthsOfMillimetre)) return;
  *out = MarginsOf(mode.own, static_cast<PaperUnit>(target_unit), ResolutionOf(mode.pub));
}

}  // namespace quillo
