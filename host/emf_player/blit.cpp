#include "host/emf_player/blit.h"

#include <array>

#include "host/emf_player/region_data.h"
#include "host/emf_player/rounding.h"

namespace quillo::host::emf {

namespace {

constexpr uint8_t kNoOperation = 0xAA;  // leaves the destination as it is

/// Top left, top right and bottom left corner of a mapped rectangle.
std::array<POINTFIX, 3> MapCorners(const Transform& map, const Area& area) {
  const PointD a = map.Apply(area.x, area.y);
  const PointD b = map.Apply(area.x + area.width, area.y);
  const PointD c = map.Apply(area.x, area.y + area.height);
  return {ToPointFix(a.x, a.y), ToPointFix(b.x, b.y), ToPointFix(c.x, c.y)};
}

}  // namespace

Area ReadArea(PayloadReader& record) {
  Area area;
  for (double* value : {&area.x, &area.y, &area.width, &area.height}) {
    *value = record.Read<int32_t>();
  }
  return area;
}

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

RECTL MapArea(const Transform& map, const Area& area) {
  const PointD a = map.Apply(area.x, area.y);
  const PointD b = map.Apply(area.x + area.width, area.y + area.height);
  return {ToPixel(a.x), ToPixel(a.y), ToPixel(b.x), ToPixel(b.y)};
}

void DrawBlit(EmfPlayer& player, Blit blit) {
  if (blit.rop == kNoOperation) return;
  BrushDescription brush;
  const BrushDescription* used_brush =
      player.DescribeBrush(*player.state().brush, brush) ? &brush : nullptr;
  const DrawState drawing = player.Drawing();
  if (blit.bitmap == nullptr) {
    if (blit.map.KeepsAxes()) {
      const Area& area = blit.target;
      const RECTL target =
          ToPixelRect(blit.map, area.x, area.y, area.x + area.width, area.y + area.height);
      player.canvas().BitBlt(target, blit.rop, used_brush, nullptr, {}, drawing);
      return;
    }
    // A rotated rectangle is its bounding box, clipped to it.
    const RectL logical = {ToPixel(blit.target.x), ToPixel(blit.target.y),
                           ToPixel(blit.target.x + blit.target.width),
                           ToPixel(blit.target.y + blit.target.height)};
    DrawState inside = drawing;
    inside.clip = inside.clip.Combined(MapRectangle(logical, blit.map), RGN_AND);
    player.canvas().BitBlt(inside.clip.Bounds(), blit.rop, used_brush, nullptr, {}, inside);
    return;
  }
  const RECTL source = OrderSource(blit.source, blit.target);
  if (!blit.map.KeepsAxes()) {
    if (blit.rop != kSourceCopy) {
      player.NotCarried();
      return;
    }
    player.canvas().PlgBlt(MapCorners(blit.map, blit.target), *blit.bitmap, source, nullptr, {},
                           player.state().stretch_mode, drawing);
    return;
  }
  player.canvas().StretchBlt(MapArea(blit.map, blit.target), *blit.bitmap, source, blit.rop,
                             used_brush, player.state().stretch_mode, drawing);
}

}  // namespace quillo::host::emf
