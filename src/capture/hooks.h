#pragma once

#include "base/ddi.h"

// The drawing entries of the DDI table, with the interface's own prototypes. They live in this
// namespace because the system header declares the same names without noexcept.
//
// Every hook that draws finds the device through its surface: it returns FALSE for an unknown
// device (with the last error of FindDevice) and for one that refuses drawing (kDrawingRefused),
// and TRUE without recording anything for one that discards it (kDrawingDiscarded). Otherwise it
// records the call as one bracket of records, which is closed on every path out.
namespace quillo {

BOOL APIENTRY DrvStrokePath(SURFOBJ* surface, PATHOBJ* path, CLIPOBJ* clip, XFORMOBJ* transform,
                            BRUSHOBJ* brush, POINTL* brush_origin, LINEATTRS* attributes,
                            MIX mix) noexcept;
BOOL APIENTRY DrvFillPath(SURFOBJ* surface, PATHOBJ* path, CLIPOBJ* clip, BRUSHOBJ* brush,
                          POINTL* brush_origin, MIX mix, FLONG options) noexcept;
BOOL APIENTRY DrvStrokeAndFillPath(SURFOBJ* surface, PATHOBJ* path, CLIPOBJ* clip,
                                   XFORMOBJ* transform, BRUSHOBJ* stroke_brush,
                                   LINEATTRS* attributes, BRUSHOBJ* fill_brush,
                                   POINTL* brush_origin, MIX mix, FLONG options) noexcept;
/// Always FALSE and without effect, so that the engine draws the line through DrvStrokePath.
BOOL APIENTRY DrvLineTo(SURFOBJ* surface, CLIPOBJ* clip, BRUSHOBJ* brush, LONG x1, LONG y1, LONG x2,
                        LONG y2, RECTL* bounds, MIX mix) noexcept;

BOOL APIENTRY DrvBitBlt(SURFOBJ* target, SURFOBJ* source, SURFOBJ* mask, CLIPOBJ* clip,
                        XLATEOBJ* translation, RECTL* target_rect, POINTL* source_origin,
                        POINTL* mask_origin, BRUSHOBJ* brush, POINTL* brush_origin,
                        ROP4 rop4) noexcept;
BOOL APIENTRY DrvPaint(SURFOBJ* surface, CLIPOBJ* clip, BRUSHOBJ* brush, POINTL* brush_origin,
                       MIX mix) noexcept;
BOOL APIENTRY DrvStretchBlt(SURFOBJ* target, SURFOBJ* source, SURFOBJ* mask, CLIPOBJ* clip,
                            XLATEOBJ* translation, COLORADJUSTMENT* adjustment,
                            POINTL* halftone_origin, RECTL* target_rect, RECTL* source_rect,
                            POINTL* mask_origin, ULONG mode) noexcept;
BOOL APIENTRY DrvCopyBits(SURFOBJ* target, SURFOBJ* source, CLIPOBJ* clip, XLATEOBJ* translation,
                          RECTL* target_rect, POINTL* source_origin) noexcept;
BOOL APIENTRY DrvAlphaBlend(SURFOBJ* target, SURFOBJ* source, CLIPOBJ* clip, XLATEOBJ* translation,
                            RECTL* target_rect, RECTL* source_rect, BLENDOBJ* blend) noexcept;

BOOL APIENTRY DrvRealizeBrush(BRUSHOBJ* brush, SURFOBJ* target, SURFOBJ* pattern, SURFOBJ* mask,
                              XLATEOBJ* translation, ULONG hatch) noexcept;
/// Always DCR_SOLID: the engine picks the nearest solid colour.
ULONG APIENTRY DrvDitherColor(DHPDEV device, ULONG mode, ULONG colour, ULONG* pixels) noexcept;

BOOL APIENTRY DrvTextOut(SURFOBJ* surface, STROBJ* text, FONTOBJ* font, CLIPOBJ* clip,
                         RECTL* extra_rects, RECTL* opaque_rect, BRUSHOBJ* foreground,
                         BRUSHOBJ* opaque_brush, POINTL* brush_origin, MIX mix) noexcept;
ULONG APIENTRY DrvGetGlyphMode(DHPDEV device, FONTOBJ* font) noexcept;

}  // namespace quillo
