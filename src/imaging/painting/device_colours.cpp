#include "imaging/painting/device_colours.h"

#include <span>

#include "imaging/bitmap/kernel_settings.h"
#include "imaging/painting/paint.h"

namespace quillo::imaging {
namespace {

HPALETTE CreateGdiPalette(std::span<const PaletteEntry> entries) {
  struct {
    LOGPALETTE head;
    PALETTEENTRY rest[255];
  } log{};
  log.head.palVersion = 0x300;
  log.head.palNumEntries = static_cast<WORD>(entries.size());
  PALETTEENTRY* out = log.head.palPalEntry;
  for (const PaletteEntry entry : entries) *out++ = {entry.red, entry.green, entry.blue, 0};
  return CreatePalette(&log.head);
}

}  // namespace

uint32_t DeviceDepth(HDC dc) {
  if (dc == nullptr || GetDeviceCaps(dc, TECHNOLOGY) == DT_METAFILE) return 24;
  return QuantizeDepth(
      static_cast<uint32_t>(GetDeviceCaps(dc, BITSPIXEL) * GetDeviceCaps(dc, PLANES)));
}

PaintMethod PaintMethodFor(uint32_t device_depth, const BitmapHandle& record) {
  // Every GDI device takes the 24-bit pixels of a DIB, which are blue first.
  return ChoosePaintMethod(FormatOf(record), device_depth, kOrderColour,
                           ThreadSettings().display_mode);
}

uint32_t FillDitherPalette(uint32_t depth, PaletteEntry (&palette)[256]) {
  const uint32_t colours = 1u << depth;
  if (depth == 8 && (ThreadSettings().display_mode & kModeColourCube) != 0) {
    FillColourCube(palette);
  } else {
    FillDefaultPalette(std::span(palette).first(colours));
  }
  return colours;
}

void FillLookupPalette(const BitmapHandle& record, PaletteEntry (&palette)[256]) {
  for (uint32_t i = 0; i < 256; ++i) {
    const auto level = record.lookup8 != nullptr ? record.lookup8[i] : static_cast<uint8_t>(i);
    palette[i] = {level, level, level, 0};
  }
}

HPALETTE CreatePaintPalette(HDC dc, const BitmapHandle* record) {
  if (record == nullptr || !IsStructureSize(record->structure_size)) return nullptr;
  const uint32_t device_depth = DeviceDepth(dc);
  PaletteEntry palette[256];
  switch (PaintMethodFor(device_depth, *record)) {
    case PaintMethod::kDither:
      return CreateGdiPalette({palette, FillDitherPalette(device_depth, palette)});
    case PaintMethod::kGreyBlackOnWhite:
    case PaintMethod::kGreyWhiteOnBlack:
      FillLookupPalette(*record, palette);
      return CreateGdiPalette(palette);
    default:
      break;
  }
  if (record->bits_per_pixel <= 8) {
    const std::span<PaletteEntry> own = PaletteOf(*record);
    return own.empty() ? nullptr : CreateGdiPalette(own);
  }
  if (!IsGrey(FormatOf(*record))) return nullptr;
  FillLookupPalette(*record, palette);
  return CreateGdiPalette(palette);
}

}  // namespace quillo::imaging
