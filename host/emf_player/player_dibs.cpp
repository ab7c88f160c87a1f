// Records that draw device-independent bitmaps.

#include <algorithm>

#include "host/emf_player/bitmap_data.h"
#include "host/emf_player/blit.h"
#include "host/emf_player/playback.h"

namespace quillo::host::emf {

namespace {

/// Row of the picture's top edge that a record of the DIB calls counts from the bottom, except in
/// top-down DIBs.
double TopRow(const BitmapSource& bitmap, double y, double height) {
  return bitmap.top_down ? y : bitmap.height - y - height;
}

void PlayStretchDibits(Playback& dc, PayloadReader& record) {
  record.Skip(sizeof(RectL));  // bounds
  Blit blit;
  blit.map = dc.ToPage();
  blit.target.x = record.Read<int32_t>();
  blit.target.y = record.Read<int32_t>();
  blit.source = ReadArea(record);
  const DibPlace place = ReadDibPlace(record);
  const auto colors = record.Read<uint32_t>();
  blit.rop = RopByte(record.Read<uint32_t>());
  blit.target.width = record.Read<int32_t>();
  blit.target.height = record.Read<int32_t>();
  if (!record.ok()) return;
  if (UsesSource(blit.rop)) {
    if (place.Empty()) return;
    blit.bitmap = ReadBitmap(dc, record, place, colors);
    if (blit.bitmap == nullptr) return;
    blit.source.y = TopRow(*blit.bitmap, blit.source.y, blit.source.height);
  }
  DrawBlit(dc, blit);
}

/// A pixel of the bitmap is one of the reference device, whatever the DC's transform.
void PlaySetDibitsToDevice(Playback& dc, PayloadReader& record) {
  record.Skip(sizeof(RectL));  // bounds
  const auto corner = record.Read<PointL>();
  Area source = ReadArea(record);
  const DibPlace place = ReadDibPlace(record);
  const auto colors = record.Read<uint32_t>();
  const double start_row = record.Read<uint32_t>();
  const auto rows = record.Read<uint32_t>();
  if (!record.ok() || place.Empty() || rows == 0) return;
  const auto bitmap = ReadBitmap(dc, record, place, colors, rows);
  if (bitmap == nullptr) return;

  // The rows at hand are start_row onwards, counted from the picture's bottom (top-down: its top);
  // the others draw nothing.
  const double first = std::max(source.y, start_row);
  const double last = std::min(source.y + source.height, start_row + bitmap->height);
  if (first >= last) return;
  const double rows_above = bitmap->top_down ? first - source.y : source.y + source.height - last;

  const PointD device = dc.DevicePixel(corner);
  Blit blit;
  blit.map = dc.DeviceToPage();
  blit.target = {device.x, device.y + rows_above, source.width, last - first};
  blit.bitmap = bitmap;
  blit.source = {source.x, TopRow(*bitmap, first - start_row, last - first), source.width,
                 last - first};
  DrawBlit(dc, blit);
}

}  // namespace

void AddDibHandlers(HandlerTable& table) {
  table[kEmrSTRETCHDIBITS] = PlayStretchDibits;
  table[kEmrSETDIBITSTODEVICE] = PlaySetDibitsToDevice;
}

}  // namespace quillo::host::emf
