#include "host/engine/graphics.h"

#include <algorithm>
#include <cmath>

#include "host/engine/brush_objects.h"
#include "host/engine/stroke_objects.h"

namespace quillo::host {
namespace {

/// The pixels within `reach` pixels of a path; never empty.
RECTL PixelBounds(const Path& path, double reach) {
  const RECTFX bounds = path.Bounds();
  const auto low = [&](FIX value) { return static_cast<LONG>(std::floor(value / 16.0 - reach)); };
  const auto high = [&](FIX value) { return static_cast<LONG>(std::ceil(value / 16.0 + reach)); };
  const LONG left = low(bounds.xLeft), top = low(bounds.yTop);
  return {left, top, std::max(high(bounds.xRight), left + 1),
          std::max(high(bounds.yBottom), top + 1)};
}

/// Foreground mix in the low byte, background mix above it.
MIX MixOf(const DrawState& state) {
  return static_cast<MIX>((state.opaque_background ? state.rop2 : R2_NOP) << 8 | state.rop2);
}

/// Limits the reach of pens, in pixels: what is farther away cannot matter.
constexpr double kMaxReach = 1 << 20;

}  // namespace

Graphics::Graphics(const DriverFunctions& driver, const DEVINFO& device_info, Surface& surface)
    : driver_(driver),
      capabilities_(device_info.flGraphicsCaps),
      surface_(surface),
      last_clip_on_surface_(RECTL{0, 0, surface.sizlBitmap.cx, surface.sizlBitmap.cy}),
      budget_(surface.sizlBitmap) {}

Graphics::~Graphics() = default;

SIZEL Graphics::Size() const { return surface_.sizlBitmap; }

void Graphics::CountRealisations(unsigned count) {
  if (count != 0) calls_.made["DrvRealizeBrush"] += count;
}

std::optional<ClipObject> Graphics::ClipFor(const RECTL& bounds, const ClipShape& clip) {
  if (!clip.SameAs(last_clip_)) {
    const ClipShape whole(RECTL{0, 0, surface_.sizlBitmap.cx, surface_.sizlBitmap.cy});
    last_clip_on_surface_ = whole.Combined(clip, RGN_AND);
    last_clip_ = clip;
  }
  const ClipShape& shape = last_clip_on_surface_;
  if (!shape.Intersects(bounds)) return std::nullopt;
  if (shape.Contains(bounds)) return ClipObject(DC_TRIVIAL, bounds);
  if (shape.IsRectangle()) return ClipObject(DC_RECT, shape.Bounds());
  // The driver need not see the clip outside of the drawing; often only a rectangle remains.
  const ClipShape part = shape.Combined(ClipShape(bounds), RGN_AND);
  if (part.IsRectangle()) return ClipObject(DC_RECT, part.Bounds());
  return ClipObject(part.Bounds(), RunsOf(part.Outline()));
}

std::vector<PathRun> Graphics::RunsOf(const Path& path) const {
  if (path.HasBeziers() && (capabilities_ & GCAPS_BEZIERS) == 0) return RunsOf(path.Flattened());
  std::vector<PathRun> runs;
  for (const Figure& figure : path.Figures()) {
    const POINTFIX* point = figure.points.data();
    runs.push_back({PD_BEGINSUBPATH | PD_RESETSTYLE, {*point++}});
    for (size_t i = 0; i < figure.verbs.size(); ++i) {
      const bool curve = figure.verbs[i] == Figure::Verb::kBezier;
      if (i > 0 && figure.verbs[i] != figure.verbs[i - 1]) runs.emplace_back();
      if (curve) runs.back().flags |= PD_BEZIERS;
      runs.back().points.insert(runs.back().points.end(), point, point + (curve ? 3 : 1));
      point += curve ? 3 : 1;
    }
    runs.back().flags |= PD_ENDSUBPATH | (figure.closed ? PD_CLOSEFIGURE : 0);
  }
  return runs;
}

void Graphics::Stroke(const Path& path, const PenDescription& pen, const DrawState& state) {
  if (path.Empty() || state.rop2 == R2_NOP) return;
  auto clip = ClipFor(PixelBounds(path, std::min(Reach(pen), kMaxReach)), state.clip);
  if (!clip) return;

  PathObject outline(RunsOf(path));
  StrokeObjects stroke(pen);
  BrushObjects brush(pen.brush, driver_.RealizeBrush, surface_);
  POINTL origin = state.brush_origin;
  if (!Hook("DrvStrokePath", driver_.StrokePath, HOOK_STROKEPATH, &surface_, &outline, &*clip,
            stroke.Transform(), brush.Brush(), &origin, stroke.Attributes(), MixOf(state))) {
    Refused("DrvStrokePath");
  }
  CountRealisations(brush.Realisations());
}

void Graphics::Fill(const Path& path, const BrushDescription& brush, FillMode mode,
                    const DrawState& state) {
  if (path.Empty() || state.rop2 == R2_NOP) return;
  auto clip = ClipFor(PixelBounds(path, 0), state.clip);
  if (!clip) return;

  PathObject outline(RunsOf(path));
  BrushObjects fill(brush, driver_.RealizeBrush, surface_);
  POINTL origin = state.brush_origin;
  if (!Hook("DrvFillPath", driver_.FillPath, HOOK_FILLPATH, &surface_, &outline, &*clip,
            fill.Brush(), &origin, MixOf(state), static_cast<FLONG>(mode))) {
    Refused("DrvFillPath");
  }
  CountRealisations(fill.Realisations());
}

void Graphics::StrokeAndFill(const Path& path, const PenDescription& pen,
                             const BrushDescription& brush, FillMode mode, const DrawState& state) {
  if (path.Empty() || state.rop2 == R2_NOP) return;
  auto clip = ClipFor(PixelBounds(path, std::min(Reach(pen), kMaxReach)), state.clip);
  if (!clip) return;

  bool drawn;
  {
    PathObject outline(RunsOf(path));
    StrokeObjects stroke(pen);
    BrushObjects line(pen.brush, driver_.RealizeBrush, surface_);
    BrushObjects fill(brush, driver_.RealizeBrush, surface_);
    POINTL origin = state.brush_origin;
    drawn = Hook("DrvStrokeAndFillPath", driver_.StrokeAndFillPath, HOOK_STROKEANDFILLPATH,
                 &surface_, &outline, &*clip, stroke.Transform(), line.Brush(), stroke.Attributes(),
                 fill.Brush(), &origin, MixOf(state), static_cast<FLONG>(mode));
    CountRealisations(line.Realisations() + fill.Realisations());
  }
  if (drawn) return;
  Fill(path, brush, mode, state);
  Stroke(path, pen, state);
}

void Graphics::Line(POINTFIX from, POINTFIX to, const PenDescription& pen, const DrawState& state) {
  Path path;
  path.MoveTo(from);
  path.LineTo(to);
  const bool plain = !pen.geometric && pen.style.empty() && !pen.alternate &&
                     pen.brush.kind == BrushDescription::Kind::kSolid;
  if (plain && state.rop2 != R2_NOP) {
    RECTL bounds = PixelBounds(path, Reach(pen));
    auto clip = ClipFor(bounds, state.clip);
    if (!clip) return;
    BrushObjects brush(pen.brush, driver_.RealizeBrush, surface_);
    if (Hook("DrvLineTo", driver_.LineTo, HOOK_LINETO, &surface_, &*clip, brush.Brush(),
             LONG{FXTOLROUND(from.x)}, LONG{FXTOLROUND(from.y)}, LONG{FXTOLROUND(to.x)},
             LONG{FXTOLROUND(to.y)}, &bounds, MixOf(state))) {
      return;
    }
  }
  Stroke(path, pen, state);
}

void Graphics::Paint(const ClipShape& area, const BrushDescription& brush, const DrawState& state) {
  if (state.rop2 == R2_NOP) return;
  const ClipShape whole(RECTL{0, 0, surface_.sizlBitmap.cx, surface_.sizlBitmap.cy});
  const ClipShape shape = whole.Combined(area, RGN_AND).Combined(state.clip, RGN_AND);
  if (shape.Empty()) return;

  // The clip itself is painted, so even a rectangle is never trivial.
  ClipObject clip = shape.IsRectangle() ? ClipObject(DC_RECT, shape.Bounds())
                                        : ClipObject(shape.Bounds(), RunsOf(shape.Outline()));
  BrushObjects paint(brush, driver_.RealizeBrush, surface_);
  POINTL origin = state.brush_origin;
  if (!Hook("DrvPaint", driver_.Paint, HOOK_PAINT, &surface_, &clip, paint.Brush(), &origin,
            MixOf(state))) {
    Refused("DrvPaint");
  }
  CountRealisations(paint.Realisations());
}

}  // namespace quillo::host
