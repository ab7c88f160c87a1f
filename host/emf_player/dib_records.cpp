// Records that draw device-independent bitmaps.

#include <algorithm>

#include "host/emf_player/bitmap_data.h"
#include "host/emf_player/blit.h"
#include "host/emf_player/emf_player.h"
#include "host/emf_player/record_fields.h"
#include "host/emf_player/record_handlers.h"

namespace quillo::host::emf {

namespace {

/// The row of a source rectangle's top edge. The records count rows from the bottom, except in
/// top-down DIBs.
double TopRow(const BitmapSource& bitmap, double y, double height) {
  return bitmap.top_down ? y : bitmap.height - y - height;
}

void PlayStretchDibits(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  Blit blit;
  blit.map = player.ToPage();
  blit.target.x = record.Read<int32_t>();
  blit.target.y = record.Read<int32_t>();
  blit.source = ReadArea(record);
  const DibPlace place = ReadDibPlace(record);
  const auto colours = record.Read<uint32_t>();
  blit.rop = RopByte(record.Read<uint32_t>());
  blit.target.width = record.Read<int32_t>();
  blit.target.height = record.Read<int32_t>();
  if (!record.ok()) return;
  if (UsesSource(blit.rop)) {
    if (place.Empty()) return;
    blit.bitmap = ReadBitmap(player, record, place, colours);
    if (blit.bitmap == nullptr) return;
    blit.source.y = TopRow(*blit.bitmap, blit.source.y, blit.source.height);
  }
  DrawBlit(player, blit);
}

/// A pixel of the bitmap is a pixel of the reference device, whatever the DC's transform.
void PlaySetDibitsToDevice(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  const auto corner = record.Read<PointL>();
  Area source = ReadArea(record);
  const DibPlace place = ReadDibPlace(record);
  const auto colours = record.Read<uint32_t>();
  const double start_row = record.Read<uint32_t>();
  const auto rows = record.Read<uint32_t>();
  if (!record.ok() || place.Empty() || rows == 0) return;
  const auto bitmap = ReadBitmap(player, record, place, colours, rows);
  if (bitmap == nullptr) return;

  // The record has only the rows from start_row on, counted from the picture's bottom (top-down:
  // its top); the others draw nothing.
  const double first = std::max(source.y, start_row);
  const double last = std::min(source.y + source.height, start_row + bitmap->height);
  if (first >= last) return;
  const double rows_above = bitmap->top_down ? first - source.y : source.y + source.height - last;

  const PointD device = player.DevicePixel(corner);
  Blit blit;
  blit.map = player.DeviceToPage();
  blit.target = {device.x, device.y + rows_above, source.width, last - first};
  blit.bitmap = bitmap;
  blit.source = {source.x, TopRow(*bitmap, first - start_row, last - first), source.width,
                 last - first};
  DrawBlit(player, blit);
}

}  // namespace

void AddDibHandlers(HandlerTable& table) {
  table[kEmrSTRETCHDIBITS] = PlayStretchDibits;
  table[kEmrSETDIBITSTODEVICE] = PlaySetDibitsToDevice;
}

}  // namespace quillo::host::emf
