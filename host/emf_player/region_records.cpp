// Records that draw regions. Their rectangles are in logical units, unlike those of clip regions.

#include <algorithm>
#include <cmath>

#include "host/emf_player/emf_player.h"
#include "host/emf_player/record_fields.h"
#include "host/emf_player/record_handlers.h"
#include "host/emf_player/region_data.h"
#include "host/emf_player/rounding.h"

namespace quillo::host::emf {

namespace {

std::optional<ClipShape> ReadLogicalRegion(EmfPlayer& player, PayloadReader& record, size_t size) {
  std::string what;
  auto region = ReadRegion(record, size, player.ToPage(), what);
  if (!what.empty()) player.Fault(what);
  if (region) player.Spend(static_cast<double>(region->RectangleCount()));
  return region;
}

void PaintWith(EmfPlayer& player, const ClipShape& area, const BrushObject& object) {
  BrushDescription brush;
  if (!player.DescribeBrush(object, brush)) return;
  player.canvas().Paint(area, brush, player.Drawing());
}

Shared<BrushObject> FindBrush(EmfPlayer& player, uint32_t index) {
  return player.FindObject<BrushObject>(index, "brush");
}

void FillRegion(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  const auto size = record.Read<uint32_t>();
  const auto brush = FindBrush(player, record.Read<uint32_t>());
  const auto region = ReadLogicalRegion(player, record, size);
  if (region && brush) PaintWith(player, *region, *brush);
}

/// The region with its edges moved inwards by so many pixels.
ClipShape Eroded(const ClipShape& region, LONG dx, LONG dy) {
  const ClipShape across =
      region.Combined(region.Offset(dx, 0), RGN_AND).Combined(region.Offset(-dx, 0), RGN_AND);
  return across.Combined(across.Offset(0, dy), RGN_AND).Combined(across.Offset(0, -dy), RGN_AND);
}

void FrameRegion(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  const auto size = record.Read<uint32_t>();
  const auto brush = FindBrush(player, record.Read<uint32_t>());
  const auto stroke = record.Read<SizeL>();
  const auto region = ReadLogicalRegion(player, record, size);
  if (!region || !brush) return;
  const PointD across = player.ToPage().ApplyVector(stroke.x, 0);
  const PointD down = player.ToPage().ApplyVector(0, stroke.y);
  const LONG dx = std::max<LONG>(1, ToPixel(std::hypot(across.x, across.y)));
  const LONG dy = std::max<LONG>(1, ToPixel(std::hypot(down.x, down.y)));
  PaintWith(player, region->Combined(Eroded(*region, dx, dy), RGN_DIFF), *brush);
}

void InvertRegion(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  const auto size = record.Read<uint32_t>();
  const auto region = ReadLogicalRegion(player, record, size);
  if (!region) return;
  DrawState drawing = player.Drawing();
  drawing.rop2 = R2_NOT;
  player.canvas().Paint(*region, BrushDescription(), drawing);
}

void PaintRegion(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  const auto size = record.Read<uint32_t>();
  if (const auto region = ReadLogicalRegion(player, record, size)) {
    PaintWith(player, *region, *player.state().brush);
  }
}

}  // namespace

void AddRegionHandlers(HandlerTable& table) {
  table[kEmrFILLRGN] = FillRegion;
  table[kEmrFRAMERGN] = FrameRegion;
  table[kEmrINVERTRGN] = InvertRegion;
  table[kEmrPAINTRGN] = PaintRegion;
}

}  // namespace quillo::host::emf
