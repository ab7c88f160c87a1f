#include "imaging/dib/convert_dib.h"

#include "base/gdi_owners.h"
#include "base/system_owners.h"
#include "imaging/bitmap/kernel_settings.h"
#include "imaging/dib/dib_header.h"
#include "imaging/dib/dib_rows.h"
#include "imaging/lifecycle/create.h"
#include "imaging/storage/rows.h"
#include "imaging/storage/storage.h"

namespace quillo::imaging {
namespace {

/// The DIB's resolution, or the screen's where it states none.
void SetResolution(const DibDescription& dib, BitmapHandle& record) {
  int x = dib.x_pixels_per_metre;
  int y = dib.y_pixels_per_metre;
  if (x == 0 || y == 0) {
    const ScreenDc screen(GetDC(nullptr));
    const auto per_metre = [&screen](int pixels, int millimetres) {
      return MulDiv(GetDeviceCaps(screen.Get(), pixels), 1000,
                    GetDeviceCaps(screen.Get(), millimetres));
    };
    if (x == 0) x = per_metre(HORZRES, HORZSIZE);
    if (y == 0) y = per_metre(VERTRES, VERTSIZE);
  }
  record.x_resolution = static_cast<uint32_t>(DotsPerInch(x));
  record.y_resolution = static_cast<uint32_t>(DotsPerInch(y));
}

/// Compatibility: YUV buffers are taken as top-down whatever the sign of their height, and the sign
/// is inverted: a positive height is top row first. Kept for pages.
uint32_t ViewPerspectiveOf(const DibDescription& dib) {
  return dib.negative_height != IsYuv(dib.layout) ? kTopRowFirst : kBottomRowFirst;
}

int Describe(const DibDescription& dib, uint32_t structure_size, BitmapHandle* record) {
  const int result = Init(record, structure_size, dib.width, dib.height, dib.bits_per_pixel);
  if (result != kSuccess) return result;
  record->colours = dib.colours;
  record->colour_order = dib.bits_per_pixel <= 8 ? kOrderPalette : kOrderColour;
  record->view_perspective = ViewPerspectiveOf(dib);
  SetResolution(dib, *record);
  return kSuccess;
}

int FillRecord(const DibDescription& dib, Bytes header, Bytes bits, BitmapHandle& record) {
  HeapBlock scratch;
  if (NeedsScratchRow(dib.layout)) {
    scratch = HeapBlock(record.bytes_per_line);
    if (!scratch) return kOutOfMemory;
  }
  int result = AllocateStorage(record, ThreadSettings().memory_type);
  if (result != kSuccess) return result;
  if (dib.bits_per_pixel <= 8) {
    result = AllocatePalette(record);
    if (result != kSuccess) return result;
    ReadColourTable(header, dib, PaletteOf(record));
  }
  const LockScope lock(record);
  if (lock.Result() != kSuccess) return lock.Result();
  const MutableBytes work(scratch.As<std::byte>(), scratch ? record.bytes_per_line : 0);
  return ConvertDibRows(
      dib, bits, work, [&record](uint32_t row, Bytes data) { return StoreRow(record, row, data); });
}

}  // namespace

int ConvertFromDib(BitmapHandle* record, uint32_t structure_size, Bytes header, Bytes bits) {
  if (record == nullptr) return kInvalidArgument;
  if (!IsStructureSize(structure_size)) return kWrongStructureSize;
  DibDescription dib;
  int result = AnalyseDib(header, &dib);
  if (result != kSuccess) return result;
  result = Describe(dib, structure_size, record);
  if (result != kSuccess || bits.data() == nullptr) return result;
  if (dib.layout == DibLayout::kJpeg) return kUnsupportedFormat;
  if (bits.size() < SourceSize(dib)) return kInvalidArgument;
  result = FillRecord(dib, header, bits, *record);
  if (result != kSuccess) Free(record);
  return result;
}

int ConvertFromDib(BitmapHandle* record, uint32_t structure_size, const void* header,
                   const void* bits) {
  if (header == nullptr) return kInvalidArgument;
  const auto* start = static_cast<const std::byte*>(header);
  const auto size = LoadOrZero<uint32_t>({start, sizeof(uint32_t)});
  DibDescription dib;
  const bool known = AnalyseDib({start, size}, &dib) == kSuccess;
  const size_t masks = known && dib.layout == DibLayout::kBitFields ? sizeof(ColourMasks) : 0;
  const size_t header_size = size + (known ? size_t{dib.colours} * dib.colour_entry : 0) + masks;
  if (bits == nullptr) return ConvertFromDib(record, structure_size, {start, header_size}, {});
  size_t bits_size = known ? SourceSize(dib) : 0;
  if (bits_size == 0) bits_size = dib.image_size != 0 ? dib.image_size : PTRDIFF_MAX;
  return ConvertFromDib(record, structure_size, {start, header_size},
                        {static_cast<const std::byte*>(bits), bits_size});
}

}  // namespace quillo::imaging
