#include "capture/fill.h"

#include "capture/brush.h"
#include "capture/builders.h"
#include "capture/geometry.h"

namespace quillo {

using namespace records;

void WriteFillBrush(DEVICE_PDEV& device, BRUSHOBJ* brush, const POINTL* brush_origin) {
  WriteBrush(device, brush, kFillBrush);
  if (brush_origin != nullptr) EmitSetBrushOrg(device, ToPoint(*brush_origin));
}

void WriteFill(DEVICE_PDEV& device, uint32_t fill_mode, BRUSHOBJ* brush, const POINTL* brush_origin,
               MIX mix, const Rect& rect, FillKind kind) {
  EmitSetPolyFillMode(device, fill_mode);
  WriteFillBrush(device, brush, brush_origin);
  EmitSetRop2(device, PathRop2(mix));
  switch (kind) {
    case FillKind::kRectangle:
      EmitFillRect(device, rect);
      break;
    case FillKind::kPath:
      EmitRecord(device, REC_FILLPATH);
      break;
    case FillKind::kStrokeAndPath:
      EmitRecord(device, REC_STROKEANDFILLPATH);
      break;
  }
}

}  // namespace quillo
