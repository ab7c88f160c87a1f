#include "config/papers/paper_geometry.h"

#include <span>
#include <utility>

#include "base/bytes.h"
#include "config/papers/custom_papers.h"
#include "config/papers/paper_table.h"

namespace quillo {

namespace {

// The margins block: offsets from the start of the device mode. Each margin is two f32, a value and
// its divisor.
constexpr size_t kMarginsGiven = 492;  // u32, 0: every margin is 0
constexpr size_t kMarginUnit = 1016;   // u32, a MarginUnit
constexpr size_t kTopMargin = 1020;
constexpr size_t kLeftMargin = 1028;
constexpr size_t kRightMargin = 1036;
constexpr size_t kBottomMargin = 1044;
static_assert(kBottomMargin + 2 * sizeof(float) == sizeof(DeviceMode));

constexpr int32_t kResolutionWithoutMode = 150;  // dots per inch

constexpr PaperSize kFallbackSize = {{2159, 1}, {2794, 1}, kSizeTenthsOfMillimetre};

PaperSize PortraitSize(const DEVMODEW& mode) {
  const int16_t paper = mode.dmPaperSize;
  if (paper < DMPAPER_USER) {
    const PaperForm* form = FindStandardForm(paper);
    if (form == nullptr) return kFallbackSize;
    return {form->width, form->height, form->inches != 0 ? kSizeInches : kSizeMillimetres};
  }
  if (paper == DMPAPER_USER) {
    return {{mode.dmPaperWidth, 1}, {mode.dmPaperLength, 1}, kSizeTenthsOfMillimetre};
  }
  CustomPaper custom;
  if (!FindCustomPaper(mode, custom)) return kFallbackSize;
  return {{custom.width, 1}, {custom.length, 1}, SizeClassOf(custom)};
}

/// The margins are read as inches whatever unit their writer stored, and the stored unit becomes
/// inches for good: meant so.
void ForceMarginUnit(DeviceMode& mode) {
  Store(std::as_writable_bytes(std::span(&mode, 1)), kMarginUnit, uint32_t{kMarginInches});
}

}  // namespace

PaperSize PaperSizeOf(const DeviceMode& mode) {
  PaperSize size = PortraitSize(mode.pub);
  if (mode.pub.dmOrientation == DMORIENT_LANDSCAPE) std::swap(size.width, size.height);
  return size;
}

void LookUpPaperSize(const DeviceMode& mode, Fraction* width, Fraction* height,
                     uint32_t* unit_class) {
  const PaperSize size = PaperSizeOf(mode);
  if (width != nullptr) *width = size.width;
  if (height != nullptr) *height = size.height;
  if (unit_class != nullptr) *unit_class = size.unit_class;
}

int ConvertPaperSize(const DeviceMode* mode, const Fraction* width, const Fraction* height,
                     uint32_t source_class, uint32_t target_unit, Extent* out) {
  const bool pixels = target_unit == static_cast<uint32_t>(PaperUnit::kDevicePixels);
  if (mode == nullptr && pixels) return 0;
  if (width == nullptr || height == nullptr || out == nullptr) return 0;
  const int32_t resolution = mode != nullptr ? ResolutionOf(mode->pub) : kResolutionWithoutMode;
  out->width = ConvertLength(*width, source_class, target_unit, resolution);
  out->height = ConvertLength(*height, source_class, target_unit, resolution);
  return 1;
}

void GetMargins(DeviceMode& mode, Margins* out, uint32_t target_unit) {
  if (out == nullptr) return;
  ForceMarginUnit(mode);
  if (target_unit > static_cast<uint32_t>(PaperUnit::kTenthsOfMillimetre)) return;

  const Bytes bytes = std::as_bytes(std::span(&mode, 1));
  const bool given = LoadOrZero<uint32_t>(bytes, kMarginsGiven) != 0;
  const auto unit = LoadOrZero<uint32_t>(bytes, kMarginUnit);
  const int32_t resolution = ResolutionOf(mode.pub);
  const auto margin = [&](size_t offset) {
    const float value = given ? LoadOrZero<float>(bytes, offset) : 0.0f;
    const float divisor = given ? LoadOrZero<float>(bytes, offset + sizeof(float)) : 1.0f;
    return ConvertMargin(value, divisor, unit, static_cast<PaperUnit>(target_unit), resolution);
  };
  *out = {margin(kLeftMargin), margin(kTopMargin), margin(kRightMargin), margin(kBottomMargin)};
}

Extent SheetSize(const DeviceMode& mode, const PaperSize& size, PaperUnit unit) {
  Extent sheet;
  ConvertPaperSize(&mode, &size.width, &size.height, size.unit_class, static_cast<uint32_t>(unit),
                   &sheet);
  return sheet;
}

Extent SheetSize(const DeviceMode& mode, PaperUnit unit) {
  return SheetSize(mode, PaperSizeOf(mode), unit);
}

Extent PrintableSize(DeviceMode& mode, const PaperSize& size, PaperUnit unit) {
  Margins margins;
  GetMargins(mode, &margins, static_cast<uint32_t>(unit));
  return SubtractMargins(SheetSize(mode, size, unit), margins);
}

Extent PrintableSize(DeviceMode& mode, PaperUnit unit) {
  return PrintableSize(mode, PaperSizeOf(mode), unit);
}

}  // namespace quillo
