#include "capture/brush.h"

#include "base/arithmetic.h"
#include "capture/builders.h"
#include "capture/records/conversions.h"

namespace quillo {
namespace {

using namespace records;

void WriteSolidBrush(DEVICE_PDEV& device, const BRUSHOBJ& brush, BrushUsage usage) {
  if (const auto* realised = static_cast<const RealisedBrush*>(brush.pvRbrush)) {
    EmitSetBkColor(device, realised->background);
  }
  EmitCreateBrush(device, {BS_SOLID, SwapRedBlue(brush.iSolidColor), 0, usage, 0});
}

void WriteRealisedBrush(DEVICE_PDEV& device, const RealisedBrush& brush, BrushUsage usage) {
  EmitSetBkColor(device, brush.background);
  if (brush.hatch_or_pattern < kHatchCount) {
    EmitCreateBrush(device, {BS_HATCHED, brush.foreground, brush.hatch_or_pattern, usage, 0});
    return;
  }
  const uint32_t size = brush.hatch_or_pattern;
  if (!RangeFits(brush.total_size, sizeof brush, size)) return;
  EmitCreateBrush(device, {BS_DIBPATTERNPT, 0, 0, usage, 0},
                  {reinterpret_cast<const std::byte*>(&brush + 1), size});
}

}  // namespace

void WriteBrush(DEVICE_PDEV& device, BRUSHOBJ* brush, BrushUsage usage) {
  if (brush == nullptr) return;
  if (brush->iSolidColor != kNoSolidColour) {
    WriteSolidBrush(device, *brush, usage);
    return;
  }
  const void* realised = brush->pvRbrush != nullptr ? brush->pvRbrush : BRUSHOBJ_pvGetRbrush(brush);
  if (realised == nullptr) return;
  WriteRealisedBrush(device, *static_cast<const RealisedBrush*>(realised), usage);
}

}  // namespace quillo
