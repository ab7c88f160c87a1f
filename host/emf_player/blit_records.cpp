// Records that draw device-dependent bitmaps, and single pixels.

#include <algorithm>
#include <array>

#include "host/emf_player/bitmap_data.h"
#include "host/emf_player/blit.h"
#include "host/emf_player/emf_player.h"
#include "host/emf_player/record_fields.h"
#include "host/emf_player/record_handlers.h"
#include "host/emf_player/rounding.h"

namespace quillo::host::emf {

namespace {

/// The source rectangle of a record whose source has a transform of its own, in bitmap pixels.
Area MapSource(const Transform& map, const Area& source) {
  const PointD corner = map.Apply(source.x, source.y);
  const PointD size = map.ApplyVector(source.width, source.height);
  return {corner.x, corner.y, size.x, size.y};
}

/// The source bitmap of BitBlt and its relatives.
struct DeviceSource {
  Transform map;  // from the source's logical units to pixels of its bitmap
  uint32_t colours = 0;
  DibPlace place;
};

DeviceSource ReadDeviceSource(PayloadReader& record) {
  DeviceSource source;
  source.map = ReadTransform(record);
  record.Skip(4);  // background colour of the source
  source.colours = record.Read<uint32_t>();
  source.place = ReadDibPlace(record);
  return source;
}

/// The fields that all records of this kind but PlgBlt's begin with.
struct BlitFields {
  Area target;
  uint32_t operation = 0;
  Area source_area;
  DeviceSource source;
};

enum class SourceSize { kAsTarget, kOwn };

template <SourceSize size>
BlitFields ReadBlitFields(PayloadReader& record) {
  SkipBounds(record);
  BlitFields fields;
  fields.target = ReadArea(record);
  fields.operation = record.Read<uint32_t>();
  fields.source_area = fields.target;
  fields.source_area.x = record.Read<int32_t>();
  fields.source_area.y = record.Read<int32_t>();
  fields.source = ReadDeviceSource(record);
  if (size == SourceSize::kOwn) {
    fields.source_area.width = record.Read<int32_t>();
    fields.source_area.height = record.Read<int32_t>();
  }
  return fields;
}

/// The source bitmap. Null when there is none (the source had no pixels), or when it cannot be
/// drawn, which is reported.
std::shared_ptr<const BitmapSource> ReadSource(EmfPlayer& player, PayloadReader& record,
                                               const DeviceSource& source) {
  if (!record.ok() || source.place.Empty()) return nullptr;
  if (!source.map.Usable() || !source.map.KeepsAxes()) {
    player.Fault("the source transform rotates, shears or is not invertible");
    return nullptr;
  }
  return ReadBitmap(player, record, source.place, source.colours);
}

template <SourceSize size>
void PlayBitBlt(EmfPlayer& player, PayloadReader& record) {
  const BlitFields fields = ReadBlitFields<size>(record);
  if (!record.ok()) return;
  Blit blit{.target = fields.target, .map = player.ToPage(), .rop = RopByte(fields.operation)};
  if (UsesSource(blit.rop)) {
    blit.bitmap = ReadSource(player, record, fields.source);
    if (blit.bitmap == nullptr) return;
    blit.source = MapSource(fields.source.map, fields.source_area);
  }
  DrawBlit(player, blit);
}

/// The mask of MaskBlt and PlgBlt, of one bit a pixel; its place is empty without one.
struct MaskSource {
  POINTL origin{};
  uint32_t colours = 0;
  DibPlace place;
};

MaskSource ReadMaskSource(PayloadReader& record) {
  MaskSource mask;
  mask.origin.x = record.Read<int32_t>();
  mask.origin.y = record.Read<int32_t>();
  mask.colours = record.Read<uint32_t>();
  mask.place = ReadDibPlace(record);
  return mask;
}

std::shared_ptr<const BitmapSource> ReadMask(EmfPlayer& player, PayloadReader& record,
                                             const MaskSource& mask) {
  auto bitmap = ReadBitmap(player, record, mask.place, mask.colours);
  if (bitmap != nullptr && bitmap->bits_per_pixel != 1) {
    player.Fault("the mask has " + std::to_string(bitmap->bits_per_pixel) + " bits per pixel");
    return nullptr;
  }
  return bitmap;
}

void PlayMaskBlt(EmfPlayer& player, PayloadReader& record) {
  const BlitFields fields = ReadBlitFields<SourceSize::kAsTarget>(record);
  const MaskSource mask = ReadMaskSource(record);
  Blit blit{.target = fields.target,
            .map = player.ToPage(),
            .rop = RopByte(fields.operation),
            .bitmap = ReadSource(player, record, fields.source),
            .source = MapSource(fields.source.map, fields.source_area)};
  if (blit.bitmap == nullptr) return;
  if (mask.place.Empty()) {  // without a mask MaskBlt is BitBlt
    DrawBlit(player, blit);
    return;
  }
  const auto mask_bitmap = ReadMask(player, record, mask);
  if (mask_bitmap == nullptr) return;
  if (!blit.map.KeepsAxes()) {
    player.NotCarried();
    return;
  }
  BrushDescription brush;
  const bool with_brush = player.DescribeBrush(*player.state().brush, brush);
  const RECTL pixels = OrderSource(blit.source, blit.target);
  const auto rop4 = static_cast<uint16_t>(fields.operation >> 16);
  player.canvas().MaskBlt(MapArea(blit.map, blit.target), rop4, with_brush ? &brush : nullptr,
                          *blit.bitmap, pixels, *mask_bitmap, mask.origin, player.Drawing());
}

void PlayPlgBlt(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  std::array<POINTFIX, 3> corners;
  for (POINTFIX& corner : corners) {
    const auto point = record.Read<PointL>();
    const PointD at = player.ToPage().Apply(point.x, point.y);
    corner = ToPointFix(at.x, at.y);
  }
  const Area area = ReadArea(record);
  const DeviceSource source = ReadDeviceSource(record);
  const MaskSource mask = ReadMaskSource(record);
  const auto bitmap = ReadSource(player, record, source);
  if (bitmap == nullptr) return;
  std::shared_ptr<const BitmapSource> mask_bitmap;
  if (!mask.place.Empty()) {
    mask_bitmap = ReadMask(player, record, mask);
    if (mask_bitmap == nullptr) return;
  }
  Area unused;
  const RECTL pixels = OrderSource(MapSource(source.map, area), unused);
  player.canvas().PlgBlt(corners, *bitmap, pixels, mask_bitmap.get(), mask.origin,
                         player.state().stretch_mode, player.Drawing());
}

/// AlphaBlend and TransparentBlt: the same record, except for the meaning of its operation.
template <auto draw>
void PlayBlend(EmfPlayer& player, PayloadReader& record) {
  const BlitFields fields = ReadBlitFields<SourceSize::kOwn>(record);
  const auto bitmap = ReadSource(player, record, fields.source);
  if (bitmap == nullptr) return;
  if (!player.ToPage().KeepsAxes()) {
    player.NotCarried();
    return;
  }
  Area target = fields.target;
  const RECTL pixels = OrderSource(MapSource(fields.source.map, fields.source_area), target);
  draw(player, MapArea(player.ToPage(), target), *bitmap, pixels, fields.operation);
}

void DrawAlphaBlend(EmfPlayer& player, const RECTL& target, const BitmapSource& bitmap,
                    const RECTL& source, uint32_t operation) {
  const BLENDFUNCTION blend = {AC_SRC_OVER, 0, static_cast<BYTE>(operation >> 16),
                               static_cast<BYTE>(operation >> 24 & AC_SRC_ALPHA)};
  if ((operation & 0xFF) != AC_SRC_OVER) {
    player.Fault("unknown blend operation " + std::to_string(operation & 0xFF));
    return;
  }
  player.canvas().AlphaBlend(target, bitmap, source, blend, player.Drawing());
}

void DrawTransparent(EmfPlayer& player, const RECTL& target, const BitmapSource& bitmap,
                     const RECTL& source, uint32_t operation) {
  player.canvas().TransparentBlt(target, bitmap, source, ToRgb(player.Resolve(operation)),
                                 player.Drawing());
}

/// A pixel is as large as on the reference device, but at least one pixel of the page.
void PlaySetPixel(EmfPlayer& player, PayloadReader& record) {
  const auto point = record.Read<PointL>();
  const auto colour = record.Read<COLORREF>();
  const PointD at = player.DevicePixel(point);
  RECTL pixel = ToPixelRect(player.DeviceToPage(), at.x, at.y, at.x + 1, at.y + 1);
  pixel.right = std::max(pixel.right, pixel.left + 1);
  pixel.bottom = std::max(pixel.bottom, pixel.top + 1);
  const auto brush = BrushDescription::Solid(player.Resolve(colour));
  player.canvas().BitBlt(pixel, kPatternCopy, &brush, nullptr, {}, player.Drawing());
}

}  // namespace

void AddBlitHandlers(HandlerTable& table) {
  table[kEmrBITBLT] = PlayBitBlt<SourceSize::kAsTarget>;
  table[kEmrSTRETCHBLT] = PlayBitBlt<SourceSize::kOwn>;
  table[kEmrMASKBLT] = PlayMaskBlt;
  table[kEmrPLGBLT] = PlayPlgBlt;
  table[kEmrALPHABLEND] = PlayBlend<DrawAlphaBlend>;
  table[kEmrTRANSPARENTBLT] = PlayBlend<DrawTransparent>;
  table[kEmrSETPIXELV] = PlaySetPixel;
}

}  // namespace quillo::host::emf
