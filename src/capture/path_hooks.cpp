#include "base/ddi.h"

#include "capture/brush.h"
#include "capture/builders.h"
#include "capture/clip.h"
#include "capture/drawing_call.h"
#include "capture/fill.h"
#include "capture/hooks.h"
#include "capture/path.h"
#include "capture/pen.h"

namespace quillo {
namespace {

using namespace records;

void WritePathClip(DEVICE_PDEV& device, CLIPOBJ* clip, PATHOBJ* path) {
  const Rect bounds = PathBounds(path);
  WriteClip(device, clip, &bounds);
}

/// Records a path to be filled. False, with the last error set, when it cannot be recorded.
bool WriteFillPath(DEVICE_PDEV& device, PATHOBJ* path, FLONG options) {
  if (WritePath(device, path, options) != WrittenPath::kRefused) return true;
  SetLastError(ERROR_INVALID_PARAMETER);
  return false;
}

/// The next path records the stroke's solid colour, if any, as its background colour.
void RememberStrokeColour(DEVICE_PDEV& device, const BRUSHOBJ* brush) {
  if (brush != nullptr && brush->iSolidColor != kNoSolidColour) {
    device.remembered_colour = brush->iSolidColor;
  }
}

}  // namespace

BOOL APIENTRY DrvStrokePath(SURFOBJ* surface, PATHOBJ* path, CLIPOBJ* clip, XFORMOBJ* transform,
                            BRUSHOBJ* brush, POINTL*, LINEATTRS* attributes, MIX mix) noexcept {
  return CaptureDrawing(FindDevice(surface), [&](DEVICE_PDEV& device) {
    WritePen(device, attributes, transform, brush);
    EmitSetRop2(device, PathRop2(mix));
    WritePathClip(device, clip, path);
    const WrittenPath written = WritePath(device, path, kNoFillMode);
    if (written == WrittenPath::kRefused) return FALSE;
    if (written == WrittenPath::kDrawn) EmitRecord(device, REC_STROKEPATH);
    RememberStrokeColour(device, brush);
    return TRUE;
  });
}

BOOL APIENTRY DrvFillPath(SURFOBJ* surface, PATHOBJ* path, CLIPOBJ* clip, BRUSHOBJ* brush,
                          POINTL* brush_origin, MIX mix, FLONG options) noexcept {
  return CaptureDrawing(FindDevice(surface), [&](DEVICE_PDEV& device) {
    WritePathClip(device, clip, path);
    if (!WriteFillPath(device, path, options)) return FALSE;
    // Compatibility: unlike a stroke, the fill of an empty path is recorded, as in existing
    // streams.
    WriteFill(device, options, brush, brush_origin, mix, {}, FillKind::kPath);
    return TRUE;
  });
}

BOOL APIENTRY DrvStrokeAndFillPath(SURFOBJ* surface, PATHOBJ* path, CLIPOBJ* clip,
                                   XFORMOBJ* transform, BRUSHOBJ* stroke_brush,
                                   LINEATTRS* attributes, BRUSHOBJ* fill_brush,
                                   POINTL* brush_origin, MIX mix, FLONG options) noexcept {
  return CaptureDrawing(FindDevice(surface), [&](DEVICE_PDEV& device) {
    WritePen(device, attributes, transform, stroke_brush);
    EmitSetRop2(device, PathRop2(mix));
    WritePathClip(device, clip, path);
    if (!WriteFillPath(device, path, options)) return FALSE;
    WriteFill(device, options, fill_brush, brush_origin, mix, {}, FillKind::kStrokeAndPath);
    RememberStrokeColour(device, stroke_brush);
    return TRUE;
  });
}

BOOL APIENTRY DrvLineTo(SURFOBJ*, CLIPOBJ*, BRUSHOBJ*, LONG, LONG, LONG, LONG, RECTL*,
                        MIX) noexcept {
  return FALSE;
}

}  // namespace quillo
