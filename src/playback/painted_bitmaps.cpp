#include "base/windows.h"

#include <cstdlib>

#include "base/gdi_owners.h"
#include "capture/records/packed_dib.h"
#include "imaging/bitmap/kernel_settings.h"
#include "imaging/dib/convert_dib.h"
#include "imaging/lifecycle/create.h"
#include "imaging/lifecycle/dib_section.h"
#include "imaging/painting/display_mode.h"
#include "imaging/painting/paint.h"
#include "imaging/painting/paint_method.h"
#include "playback/actions.h"
#include "playback/rectangles.h"
#include "playback/source_bitmap.h"

// Bitmaps that the imaging kernel paints onto the page DC itself.
namespace quillo {
namespace {

using namespace records;

// While it lives, a bitmap's own palette is the one of the DC.
class PaintPaletteScope {
 public:
  PaintPaletteScope(HDC dc, imaging::BitmapHandle& bitmap)
      : dc_(dc), palette_(imaging::CreatePaintPalette(dc, &bitmap)) {
    if (palette_) Select(palette_.Get());
  }
  ~PaintPaletteScope() {
    if (palette_) Select(previous_);
  }
  PaintPaletteScope(const PaintPaletteScope&) = delete;
  PaintPaletteScope& operator=(const PaintPaletteScope&) = delete;

 private:
  void Select(HPALETTE palette) {
    previous_ = SelectPalette(dc_, palette, FALSE);
    RealizePalette(dc_);
  }

  HDC dc_;
  Palette palette_;  // empty: the DC keeps its own
  HPALETTE previous_ = nullptr;
};

// Changes the thread's display mode for a scope.
class DisplayModeScope {
 public:
  DisplayModeScope(uint32_t mask, uint32_t values)
      : previous_(imaging::SetDisplayMode(mask, values)) {}
  ~DisplayModeScope() { imaging::SetDisplayMode(0xFFFFFFFF, previous_); }
  DisplayModeScope(const DisplayModeScope&) = delete;
  DisplayModeScope& operator=(const DisplayModeScope&) = delete;

 private:
  uint32_t previous_;
};

// Converts a DIB of any depth into a 24-bit bitmap of the kernel, through GDI.
bool ConvertByGdi(const PackedDib& dib, imaging::BitmapHandle* bitmap) {
  const auto width = static_cast<uint32_t>(dib.info.header.width);
  const auto height = static_cast<uint32_t>(std::abs(int64_t{dib.info.header.height}));
  if (imaging::Create(bitmap, {.memory_type = imaging::ThreadSettings().memory_type,
                               .width = width,
                               .height = height,
                               .bits_per_pixel = 24,
                               .colour_order = imaging::kOrderColour}) != imaging::kSuccess) {
    return false;
  }
  const imaging::DibSectionDc dc = imaging::PresentAsDibSection(bitmap);
  return dc &&
         SetDIBitsToDevice(dc.Get().dc, 0, 0, width, height, 0, 0, 0, height, dib.bits.data(),
                           reinterpret_cast<const BITMAPINFO*>(&dib.info), DIB_RGB_COLORS) != 0;
}

bool PaintPage(HDC page_dc, Bytes header, Bytes bits) {
  const RECT page = {0, 0, GetDeviceCaps(page_dc, HORZRES), GetDeviceCaps(page_dc, VERTRES)};
  imaging::BitmapScope bitmap;
  if (imaging::ConvertFromDib(bitmap.Get(), imaging::kCurrentForm, header, bits) !=
      imaging::kSuccess) {
    return false;
  }
  const PaintPaletteScope palette(page_dc, *bitmap.Get());
  const DisplayModeScope mode(imaging::kModePage | imaging::kModeResetTable, imaging::kModePage);
  return imaging::Paint(page_dc, bitmap.Get(), {.destination = &page}) == imaging::kSuccess;
}

}  // namespace

int32_t PlaySetDibitsToDevice(PlaybackContext& context, Bytes payload) {
  if (context.page_dc == nullptr) return 0;
  const auto record = LoadOrZero<SetDibitsPayload>(payload);
  const auto dib = LocatePackedDib(payload, record.source_offset);
  imaging::BitmapScope bitmap;
  if (!dib || !TakePixels(context, dib->info.header) || !ConvertByGdi(*dib, bitmap.Get())) return 0;

  const PaintPaletteScope palette(context.page_dc, *bitmap.Get());
  const Rect& to = record.destination;
  const Point& origin = record.source_origin;
  const RECT from = {origin.x, origin.y, WrappingAdd(origin.x, Width(to)),
                     WrappingAdd(origin.y, Height(to))};
  const RECT destination = {to.left, to.top, to.right, to.bottom};
  return imaging::Paint(context.page_dc, bitmap.Get(),
                        {.source = &from, .destination = &destination}) == imaging::kSuccess;
}

int32_t PlayPageBitmap(PlaybackContext& context, Bytes payload) {
  const bool drawn = context.page_dc != nullptr &&
                     TakePixels(context, LoadOrZero<DibHeader>(context.band_header)) &&
                     PaintPage(context.page_dc, context.band_header, payload);
  if (!drawn) context.job.events->JobFailed();
  return drawn;
}

}  // namespace quillo
