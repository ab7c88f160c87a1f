// Records that draw device-dependent bitmaps, and single pixels.

#include <algorithm>
#include <array>

#include "host/emf_player/bitmap_data.h"
#include "host/emf_player/blit.h"
#include "host/emf_player/playback.h"
#include "host/emf_player/rounding.h"

namespace quillo::host::emf {

namespace {

Transform ReadTransform(PayloadReader& record) {
  Transform map;
  for (double* value : {&map.m11, &map.m12, &map.m21, &map.m22, &map.dx, &map.dy}) {
    *value = record.Read<float>();
  }
  return map;
}

/// A source as large as its target, whose corner the record goes on with.
Area ReadSourceArea(Area source, PayloadReader& record) {
  source.x = record.Read<int32_t>();
  source.y = record.Read<int32_t>();
  return source;
}

/// The source rectangle of a record whose source has a transform of its own, in bitmap pixels.
Area MapSource(const Transform& map, const Area& source) {
  const PointD corner = map.Apply(source.x, source.y);
  const PointD size = map.ApplyVector(source.width, source.height);
  return {corner.x, corner.y, size.x, size.y};
}

/// What BitBlt and its relatives have behind the source's place.
struct DeviceSource {
  Transform map;
  uint32_t colors = 0;
  DibPlace place;
};

DeviceSource ReadDeviceSource(PayloadReader& record) {
  DeviceSource source;
  source.map = ReadTransform(record);
  record.Skip(4);  // background colour of the source
  source.colors = record.Read<uint32_t>();
  source.place = ReadDibPlace(record);
  return source;
}

/// The source's picture; null when there is none (the record was made from a source without pixels)
/// or it cannot be drawn, which is reported.
std::shared_ptr<const BitmapSource> ReadSource(Playback& dc, PayloadReader& record,
                                               const DeviceSource& source) {
  if (!record.ok() || source.place.Empty()) return nullptr;
  if (!source.map.Usable() || !source.map.KeepsAxes()) {
    dc.Fault("the source's transform turns it or has no inverse");
    return nullptr;
  }
  return ReadBitmap(dc, record, source.place, source.colors);
}

template <bool stretched>
void PlayBitBlt(Playback& dc, PayloadReader& record) {
  record.Skip(sizeof(RectL));  // bounds
  Blit blit;
  blit.map = dc.ToPage();
  blit.target = ReadArea(record);
  blit.rop = RopByte(record.Read<uint32_t>());
  blit.source = ReadSourceArea(blit.target, record);
  const DeviceSource source = ReadDeviceSource(record);
  if (stretched) {
    blit.source.width = record.Read<int32_t>();
    blit.source.height = record.Read<int32_t>();
  }
  if (!record.ok()) return;
  if (UsesSource(blit.rop)) {
    blit.bitmap = ReadSource(dc, record, source);
    if (blit.bitmap == nullptr) return;
    blit.source = MapSource(source.map, blit.source);
  }
  DrawBlit(dc, blit);
}

/// The mask that MaskBlt and PlgBlt have behind the source: null without one. It has one bit a
/// pixel.
struct MaskSource {
  POINTL origin{};
  uint32_t colors = 0;
  DibPlace place;
};

MaskSource ReadMaskSource(PayloadReader& record) {
  MaskSource mask;
  mask.origin.x = record.Read<int32_t>();
  mask.origin.y = record.Read<int32_t>();
  mask.colors = record.Read<uint32_t>();
  mask.place = ReadDibPlace(record);
  return mask;
}

std::shared_ptr<const BitmapSource> ReadMask(Playback& dc, PayloadReader& record,
                                             const MaskSource& mask) {
  auto bitmap = ReadBitmap(dc, record, mask.place, mask.colors);
  if (bitmap != nullptr && bitmap->bits_per_pixel != 1) {
    dc.Fault("a mask of " + std::to_string(bitmap->bits_per_pixel) + " bits a pixel");
    return nullptr;
  }
  return bitmap;
}

void PlayMaskBlt(Playback& dc, PayloadReader& record) {
  record.Skip(sizeof(RectL));  // bounds
  Blit blit;
  blit.map = dc.ToPage();
  blit.target = ReadArea(record);
  const auto rop4 = record.Read<uint32_t>();
  blit.source = ReadSourceArea(blit.target, record);
  const DeviceSource source = ReadDeviceSource(record);
  const MaskSource mask = ReadMaskSource(record);
  blit.bitmap = ReadSource(dc, record, source);
  if (blit.bitmap == nullptr) return;
  blit.source = MapSource(source.map, blit.source);
  blit.rop = RopByte(rop4);
  if (mask.place.Empty()) {  // without a mask MaskBlt is BitBlt
    DrawBlit(dc, blit);
    return;
  }
  const auto mask_bitmap = ReadMask(dc, record, mask);
  if (mask_bitmap == nullptr) return;
  if (!blit.map.KeepsAxes()) {
    dc.NotCarried();
    return;
  }
  BrushDescription brush;
  const bool with_brush = dc.DescribeBrush(*dc.state().brush, brush);
  const RECTL pixels = OrderSource(blit.source, blit.target);
  dc.canvas().MaskBlt(MapArea(blit.map, blit.target), static_cast<uint16_t>(rop4 >> 16),
                      with_brush ? &brush : nullptr, *blit.bitmap, pixels, *mask_bitmap,
                      mask.origin, dc.Drawing());
}

void PlayPlgBlt(Playback& dc, PayloadReader& record) {
  record.Skip(sizeof(RectL));  // bounds
  std::array<POINTFIX, 3> corners;
  for (POINTFIX& corner : corners) {
    const auto point = record.Read<PointL>();
    const PointD at = dc.ToPage().Apply(point.x, point.y);
    corner = ToPointFix(at.x, at.y);
  }
  const Area area = ReadArea(record);
  const DeviceSource source = ReadDeviceSource(record);
  const MaskSource mask = ReadMaskSource(record);
  const auto bitmap = ReadSource(dc, record, source);
  if (bitmap == nullptr) return;
  std::shared_ptr<const BitmapSource> mask_bitmap;
  if (!mask.place.Empty()) {
    mask_bitmap = ReadMask(dc, record, mask);
    if (mask_bitmap == nullptr) return;
  }
  Area unused;
  const RECTL pixels = OrderSource(MapSource(source.map, area), unused);
  dc.canvas().PlgBlt(corners, *bitmap, pixels, mask_bitmap.get(), mask.origin,
                     dc.state().stretch_mode, dc.Drawing());
}

/// AlphaBlend and TransparentBlt: the same record, but for the meaning of the operation's number.
template <auto draw>
void PlayBlend(Playback& dc, PayloadReader& record) {
  record.Skip(sizeof(RectL));  // bounds
  Area target = ReadArea(record);
  const auto operation = record.Read<uint32_t>();
  Area from = ReadSourceArea(target, record);
  const DeviceSource source = ReadDeviceSource(record);
  from.width = record.Read<int32_t>();
  from.height = record.Read<int32_t>();
  const auto bitmap = ReadSource(dc, record, source);
  if (bitmap == nullptr) return;
  if (!dc.ToPage().KeepsAxes()) {
    dc.NotCarried();
    return;
  }
  const RECTL pixels = OrderSource(MapSource(source.map, from), target);
  draw(dc, MapArea(dc.ToPage(), target), *bitmap, pixels, operation);
}

void DrawAlphaBlend(Playback& dc, const RECTL& target, const BitmapSource& bitmap,
                    const RECTL& source, uint32_t operation) {
  const BLENDFUNCTION blend = {AC_SRC_OVER, 0, static_cast<BYTE>(operation >> 16),
                               static_cast<BYTE>(operation >> 24 & AC_SRC_ALPHA)};
  if ((operation & 0xFF) != AC_SRC_OVER) {
    dc.Fault("there is no blend operation " + std::to_string(operation & 0xFF));
    return;
  }
  dc.canvas().AlphaBlend(target, bitmap, source, blend, dc.Drawing());
}

void DrawTransparent(Playback& dc, const RECTL& target, const BitmapSource& bitmap,
                     const RECTL& source, uint32_t operation) {
  dc.canvas().TransparentBlt(target, bitmap, source, ToRgb(dc.Resolve(operation)), dc.Drawing());
}

/// A pixel is as large as on the reference device, and one of the page at least.
void PlaySetPixel(Playback& dc, PayloadReader& record) {
  const auto point = record.Read<PointL>();
  const auto color = record.Read<COLORREF>();
  const PointD at = dc.DevicePixel(point);
  RECTL pixel = ToPixelRect(dc.DeviceToPage(), at.x, at.y, at.x + 1, at.y + 1);
  pixel.right = std::max(pixel.right, pixel.left + 1);
  pixel.bottom = std::max(pixel.bottom, pixel.top + 1);
  const auto brush = BrushDescription::Solid(dc.Resolve(color));
  dc.canvas().BitBlt(pixel, kPatternCopy, &brush, nullptr, {}, dc.Drawing());
}

}  // namespace

void AddBlitHandlers(HandlerTable& table) {
  table[kEmrBITBLT] = PlayBitBlt<false>;
  table[kEmrSTRETCHBLT] = PlayBitBlt<true>;
  table[kEmrMASKBLT] = PlayMaskBlt;
  table[kEmrPLGBLT] = PlayPlgBlt;
  table[kEmrALPHABLEND] = PlayBlend<DrawAlphaBlend>;
  table[kEmrTRANSPARENTBLT] = PlayBlend<DrawTransparent>;
  table[kEmrSETPIXELV] = PlaySetPixel;
}

}  // namespace quillo::host::emf
