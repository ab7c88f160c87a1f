// Records that draw bitmaps, set pixels and fill gradients.

#include <algorithm>
#include <cmath>

#include "host/emf/bitmap_data.h"
#include "host/emf/playback.h"
#include "host/emf/region_data.h"
#include "host/emf/rounding.h"

namespace quillo::host::emf {

namespace {

constexpr uint8_t kSourceCopy = 0xCC;
constexpr uint8_t kNothing = 0xAA;  // leaves the destination as it is

constexpr uint8_t RopByte(uint32_t rop) { return static_cast<uint8_t>(rop >> 16); }

/// Whether the result of a ternary operation depends on its source.
constexpr bool UsesSource(uint8_t rop3) { return ((rop3 >> 2 ^ rop3) & 0x33) != 0; }

Transform ReadTransform(PayloadReader& record) {
  Transform map;
  for (double* value : {&map.m11, &map.m12, &map.m21, &map.m22, &map.dx, &map.dy}) {
    *value = record.Read<float>();
  }
  return map;
}

/// A rectangle by its corner and its size; a negative size mirrors.
struct Area {
  double x = 0, y = 0, width = 0, height = 0;
};

Area ReadArea(PayloadReader& record) {
  Area area;
  for (double* value : {&area.x, &area.y, &area.width, &area.height}) {
    *value = record.Read<int32_t>();
  }
  return area;
}

/// The source's part of a blit, in pixels of the bitmap, always the right way round; what was
/// mirrored there is mirrored in `target` instead.
RECTL OrderSource(Area source, Area& target) {
  if (source.width < 0) {
    source = {source.x + source.width, source.y, -source.width, source.height};
    target = {target.x + target.width, target.y, -target.width, target.height};
  }
  if (source.height < 0) {
    source = {source.x, source.y + source.height, source.width, -source.height};
    target = {target.x, target.y + target.height, target.width, -target.height};
  }
  return {ToPixel(source.x), ToPixel(source.y), ToPixel(source.x + source.width),
          ToPixel(source.y + source.height)};
}

/// A logical rectangle as page pixels; mirrored where the map or the area mirrors.
RECTL MapArea(const Transform& map, const Area& area) {
  const PointD a = map.Apply(area.x, area.y);
  const PointD b = map.Apply(area.x + area.width, area.y + area.height);
  return {ToPixel(a.x), ToPixel(a.y), ToPixel(b.x), ToPixel(b.y)};
}

/// Top left, top right and bottom left corner of a mapped rectangle.
std::array<POINTFIX, 3> MapCorners(const Transform& map, const Area& area) {
  const PointD a = map.Apply(area.x, area.y);
  const PointD b = map.Apply(area.x + area.width, area.y);
  const PointD c = map.Apply(area.x, area.y + area.height);
  return {ToPointFix(a.x, a.y), ToPointFix(b.x, b.y), ToPointFix(c.x, c.y)};
}

/// A blit whose parts have been read.
struct Blit {
  Area target;    // logical units
  Transform map;  // from there to the page
  uint8_t rop = kSourceCopy;
  std::shared_ptr<const BitmapSource> bitmap;  // null: none is used
  Area source;                                 // pixels of the bitmap
};

void DrawBlit(Playback& dc, Blit blit) {
  if (blit.rop == kNothing) return;
  BrushDescription brush;
  const BrushDescription* used_brush =
      dc.DescribeBrush(*dc.state().brush, brush) ? &brush : nullptr;
  const DrawState drawing = dc.Drawing();
  if (blit.bitmap == nullptr) {
    if (blit.map.KeepsAxes()) {
      const Area& area = blit.target;
      const RECTL target =
          ToPixelRect(blit.map, area.x, area.y, area.x + area.width, area.y + area.height);
      dc.canvas().BitBlt(target, blit.rop, used_brush, nullptr, {}, drawing);
      return;
    }
    // A turned rectangle is the box around it, clipped to it.
    const RectL logical = {ToPixel(blit.target.x), ToPixel(blit.target.y),
                           ToPixel(blit.target.x + blit.target.width),
                           ToPixel(blit.target.y + blit.target.height)};
    DrawState inside = drawing;
    inside.clip = inside.clip.Combined(MapRectangle(logical, blit.map), RGN_AND);
    dc.canvas().BitBlt(inside.clip.Bounds(), blit.rop, used_brush, nullptr, {}, inside);
    return;
  }
  const RECTL source = OrderSource(blit.source, blit.target);
  if (!blit.map.KeepsAxes()) {
    if (blit.rop != kSourceCopy) {
      dc.NotCarried();
      return;
    }
    dc.canvas().PlgBlt(MapCorners(blit.map, blit.target), *blit.bitmap, source, nullptr, {},
                       dc.state().stretch_mode, drawing);
    return;
  }
  dc.canvas().StretchBlt(MapArea(blit.map, blit.target), *blit.bitmap, source, blit.rop, used_brush,
                         dc.state().stretch_mode, drawing);
}

/// The source rectangle of a record whose source has a transform of its own, in bitmap pixels.
Area MapSource(const Transform& map, const Area& source) {
  const PointD corner = map.Apply(source.x, source.y);
  const PointD size = map.ApplyVector(source.width, source.height);
  return {corner.x, corner.y, size.x, size.y};
}

/// What BitBlt and its relatives have behind the target and the operation.
struct DeviceSource {
  Transform map;
  double x = 0, y = 0;
  uint32_t colors = 0;
  DibPlace place;
};

DeviceSource ReadDeviceSource(PayloadReader& record) {
  DeviceSource source;
  source.x = record.Read<int32_t>();
  source.y = record.Read<int32_t>();
  source.map = ReadTransform(record);
  record.Skip(4);  // background colour of the source
  source.colors = record.Read<uint32_t>();
  source.place = ReadDibPlace(record);
  return source;
}

bool SourceMapFits(Playback& dc, const DeviceSource& source) {
  if (source.map.Usable() && source.map.KeepsAxes()) return true;
  dc.Fault("the source's transform turns it or has no inverse");
  return false;
}

template <bool stretched>
void PlayBitBlt(Playback& dc, PayloadReader& record) {
  record.Skip(sizeof(RectL));  // bounds
  Blit blit;
  blit.map = dc.ToPage();
  blit.target = ReadArea(record);
  blit.rop = RopByte(record.Read<uint32_t>());
  const DeviceSource source = ReadDeviceSource(record);
  double width = blit.target.width, height = blit.target.height;
  if (stretched) {
    width = record.Read<int32_t>();
    height = record.Read<int32_t>();
  }
  if (!record.ok()) return;
  if (UsesSource(blit.rop)) {
    if (source.place.Empty()) return;  // recorded from a source without pixels: nothing to draw
    if (!SourceMapFits(dc, source)) return;
    blit.bitmap = ReadBitmap(dc, record, source.place, source.colors);
    if (blit.bitmap == nullptr) return;
    blit.source = MapSource(source.map, {source.x, source.y, width, height});
  }
  DrawBlit(dc, blit);
}

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

  const PointD device = dc.state().world.Then(dc.state().page.ToDevice()).Apply(corner.x, corner.y);
  Blit blit;
  blit.map = dc.DeviceToPage();
  blit.target = {std::floor(device.x + 0.5), std::floor(device.y + 0.5) + rows_above, source.width,
                 last - first};
  blit.bitmap = bitmap;
  blit.source = {source.x, TopRow(*bitmap, first - start_row, last - first), source.width,
                 last - first};
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
  const DeviceSource source = ReadDeviceSource(record);
  const MaskSource mask = ReadMaskSource(record);
  if (!record.ok() || source.place.Empty() || !SourceMapFits(dc, source)) return;
  blit.bitmap = ReadBitmap(dc, record, source.place, source.colors);
  if (blit.bitmap == nullptr) return;
  blit.source = MapSource(source.map, {source.x, source.y, blit.target.width, blit.target.height});
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
  Area area;
  area.x = record.Read<int32_t>();
  area.y = record.Read<int32_t>();
  area.width = record.Read<int32_t>();
  area.height = record.Read<int32_t>();
  DeviceSource source;
  source.map = ReadTransform(record);
  record.Skip(4);  // background colour of the source
  source.colors = record.Read<uint32_t>();
  source.place = ReadDibPlace(record);
  const MaskSource mask = ReadMaskSource(record);
  if (!record.ok() || source.place.Empty() || !SourceMapFits(dc, source)) return;
  const auto bitmap = ReadBitmap(dc, record, source.place, source.colors);
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
  const DeviceSource source = ReadDeviceSource(record);
  const double width = record.Read<int32_t>();
  const double height = record.Read<int32_t>();
  if (!record.ok() || source.place.Empty() || !SourceMapFits(dc, source)) return;
  const auto bitmap = ReadBitmap(dc, record, source.place, source.colors);
  if (bitmap == nullptr) return;
  if (!dc.ToPage().KeepsAxes()) {
    dc.NotCarried();
    return;
  }
  const RECTL pixels =
      OrderSource(MapSource(source.map, {source.x, source.y, width, height}), target);
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

void PlaySetPixel(Playback& dc, PayloadReader& record) {
  const auto point = record.Read<PointL>();
  const auto color = record.Read<COLORREF>();
  const PointD at = dc.ToPage().Apply(point.x, point.y);
  const RECTL pixel = {ToPixel(at.x), ToPixel(at.y), ToPixel(at.x) + 1, ToPixel(at.y) + 1};
  const auto brush = BrushDescription::Solid(dc.Resolve(color));
  constexpr uint8_t kPatternCopy = 0xF0;
  dc.canvas().BitBlt(pixel, kPatternCopy, &brush, nullptr, {}, dc.Drawing());
}

/// Rectangles of a gradient as two triangles each, for a map that turns them; adds the two corners
/// that a rectangle does not name.
std::vector<ULONG> SplitRectangles(std::vector<TRIVERTEX>& vertices, const std::vector<ULONG>& mesh,
                                   ULONG mode) {
  std::vector<ULONG> triangles;
  const size_t given = vertices.size();
  for (size_t i = 0; i + 1 < mesh.size(); i += 2) {
    if (mesh[i] >= given || mesh[i + 1] >= given) continue;
    // Copies, as the list grows. Colours run from the first to the second corner.
    const TRIVERTEX a = vertices[mesh[i]], b = vertices[mesh[i + 1]];
    TRIVERTEX beside = a, below = a;
    if (mode == GRADIENT_FILL_RECT_H) beside = b;
    if (mode == GRADIENT_FILL_RECT_V) below = b;
    beside.x = b.x;
    beside.y = a.y;
    below.x = a.x;
    below.y = b.y;
    const ULONG next = static_cast<ULONG>(vertices.size());
    vertices.insert(vertices.end(), {beside, below});
    triangles.insert(triangles.end(), {mesh[i], next, next + 1, mesh[i + 1], next, next + 1});
  }
  return triangles;
}

/// Triangles are shaded pixel by pixel; leaves out those for which the file has no work left.
void SpendOnTriangles(Playback& dc, const std::vector<TRIVERTEX>& vertices,
                      std::vector<ULONG>& mesh) {
  constexpr double kPixelsPerPoint = 100;  // a shaded pixel is that much cheaper
  for (size_t i = 0; i + 2 < mesh.size(); i += 3) {
    if (std::max({mesh[i], mesh[i + 1], mesh[i + 2]}) >= vertices.size()) continue;
    const TRIVERTEX& a = vertices[mesh[i]];
    const TRIVERTEX& b = vertices[mesh[i + 1]];
    const TRIVERTEX& c = vertices[mesh[i + 2]];
    const double width = double{1} * std::max({a.x, b.x, c.x}) - std::min({a.x, b.x, c.x});
    const double height = double{1} * std::max({a.y, b.y, c.y}) - std::min({a.y, b.y, c.y});
    const SIZEL page = dc.canvas().Size();
    const double area = std::min<double>(width, page.cx) * std::min<double>(height, page.cy);
    if (dc.Spend(50 + area / kPixelsPerPoint)) continue;
    mesh.resize(i);
    return;
  }
}

void PlayGradientFill(Playback& dc, PayloadReader& record) {
  record.Skip(sizeof(RectL));  // bounds
  const auto vertex_count = record.Read<uint32_t>();
  const auto shape_count = record.Read<uint32_t>();
  const auto mode = record.Read<uint32_t>();
  auto vertices = record.ReadArray<TRIVERTEX>(vertex_count);
  if (mode > GRADIENT_FILL_TRIANGLE) {
    dc.Fault("there is no mode " + std::to_string(mode));
    return;
  }
  const size_t corners = mode == GRADIENT_FILL_TRIANGLE ? 3 : 2;
  auto mesh = record.ReadArray<ULONG>(size_t{shape_count} * corners);
  if (!record.ok()) return;
  ULONG drawn_as = mode;
  if (mode != GRADIENT_FILL_TRIANGLE && !dc.ToPage().KeepsAxes()) {
    mesh = SplitRectangles(vertices, mesh, mode);
    drawn_as = GRADIENT_FILL_TRIANGLE;
  }
  for (TRIVERTEX& vertex : vertices) {
    const PointD at = dc.ToPage().Apply(vertex.x, vertex.y);
    vertex.x = ToPixel(at.x);
    vertex.y = ToPixel(at.y);
  }
  if (drawn_as == GRADIENT_FILL_TRIANGLE) SpendOnTriangles(dc, vertices, mesh);
  dc.canvas().GradientFill(vertices, mesh, drawn_as, dc.Drawing());
}

// -- Pattern brushes -----------------------------------------------------------------------------

template <BrushObject::Kind kind>
void CreatePatternBrush(Playback& dc, PayloadReader& record) {
  const auto index = record.Read<uint32_t>();
  const auto colors = record.Read<uint32_t>();
  const DibPlace place = ReadDibPlace(record);
  if (!record.ok()) return;
  BrushObject brush;
  brush.pattern = ReadBitmap(dc, record, place, colors);
  if (brush.pattern == nullptr) return;
  // "Monochrome" brushes of more colours exist in files; they have their own.
  brush.kind = brush.pattern->bits_per_pixel == 1 ? kind : BrushObject::Kind::kPattern;
  dc.StoreObject(index, std::make_shared<const BrushObject>(std::move(brush)));
}

}  // namespace

void AddBitmapHandlers(HandlerTable& table) {
  table[kEmrBITBLT] = PlayBitBlt<false>;
  table[kEmrSTRETCHBLT] = PlayBitBlt<true>;
  table[kEmrSTRETCHDIBITS] = PlayStretchDibits;
  table[kEmrSETDIBITSTODEVICE] = PlaySetDibitsToDevice;
  table[kEmrMASKBLT] = PlayMaskBlt;
  table[kEmrPLGBLT] = PlayPlgBlt;
  table[kEmrALPHABLEND] = PlayBlend<DrawAlphaBlend>;
  table[kEmrTRANSPARENTBLT] = PlayBlend<DrawTransparent>;
  table[kEmrSETPIXELV] = PlaySetPixel;
  table[kEmrGRADIENTFILL] = PlayGradientFill;
  table[kEmrCREATEMONOBRUSH] = CreatePatternBrush<BrushObject::Kind::kMonoPattern>;
  table[kEmrCREATEDIBPATTERNBRUSHPT] = CreatePatternBrush<BrushObject::Kind::kPattern>;
}

}  // namespace quillo::host::emf
