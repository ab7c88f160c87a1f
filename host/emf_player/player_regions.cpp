// Records that draw regions. Their rectangles are in logical units, unlike those of clip regions.

#include <algorithm>
#include <cmath>

#include "host/emf_player/playback.h"
#include "host/emf_player/region_data.h"
#include "host/emf_player/rounding.h"

namespace quillo::host::emf {

namespace {

std::optional<ClipShape> ReadLogicalRegion(Playback& dc, PayloadReader& record, size_t size) {
  std::string what;
  auto region = ReadRegion(record, size, dc.ToPage(), what);
  if (!what.empty()) dc.Fault(what);
  return region;
}

void PaintWith(Playback& dc, const ClipShape& area, const BrushObject& object) {
  BrushDescription brush;
  if (!dc.DescribeBrush(object, brush)) return;
  dc.Spend(static_cast<double>(area.RectangleCount()));
  dc.canvas().Paint(area, brush, dc.Drawing());
}

Shared<BrushObject> FindBrush(Playback& dc, uint32_t index) {
  const Object object = dc.objects().Get(index);
  const auto* brush = std::get_if<Shared<BrushObject>>(&object);
  if (brush != nullptr) return *brush;
  dc.Fault("object " + std::to_string(index) + " is no brush");
  return nullptr;
}

void FillRegion(Playback& dc, PayloadReader& record) {
  record.Skip(sizeof(RectL));  // bounds
  const auto size = record.Read<uint32_t>();
  const auto brush = FindBrush(dc, record.Read<uint32_t>());
  const auto region = ReadLogicalRegion(dc, record, size);
  if (region && brush) PaintWith(dc, *region, *brush);
}

/// What is left of a region when its edges come in by so many pixels.
ClipShape Eroded(const ClipShape& region, LONG dx, LONG dy) {
  const ClipShape across =
      region.Combined(region.Offset(dx, 0), RGN_AND).Combined(region.Offset(-dx, 0), RGN_AND);
  return across.Combined(across.Offset(0, dy), RGN_AND).Combined(across.Offset(0, -dy), RGN_AND);
}

void FrameRegion(Playback& dc, PayloadReader& record) {
  record.Skip(sizeof(RectL));  // bounds
  const auto size = record.Read<uint32_t>();
  const auto brush = FindBrush(dc, record.Read<uint32_t>());
  const auto stroke = record.Read<SizeL>();
  const auto region = ReadLogicalRegion(dc, record, size);
  if (!region || !brush) return;
  const PointD across = dc.ToPage().ApplyVector(stroke.x, 0);
  const PointD down = dc.ToPage().ApplyVector(0, stroke.y);
  const LONG dx = std::max<LONG>(1, ToPixel(std::hypot(across.x, across.y)));
  const LONG dy = std::max<LONG>(1, ToPixel(std::hypot(down.x, down.y)));
  PaintWith(dc, region->Combined(Eroded(*region, dx, dy), RGN_DIFF), *brush);
}

void InvertRegion(Playback& dc, PayloadReader& record) {
  record.Skip(sizeof(RectL));  // bounds
  const auto size = record.Read<uint32_t>();
  const auto region = ReadLogicalRegion(dc, record, size);
  if (!region) return;
  DrawState drawing = dc.Drawing();
  drawing.rop2 = R2_NOT;
  dc.canvas().Paint(*region, BrushDescription(), drawing);
}

void PaintRegion(Playback& dc, PayloadReader& record) {
  record.Skip(sizeof(RectL));  // bounds
  const auto size = record.Read<uint32_t>();
  if (const auto region = ReadLogicalRegion(dc, record, size)) {
    PaintWith(dc, *region, *dc.state().brush);
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
