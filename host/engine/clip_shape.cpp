#include "host/engine/clip_shape.h"

#include <new>
#include <optional>
#include <utility>

#include "base/gdi_owners.h"
#include "host/engine/polygons.h"

namespace quillo::host {
namespace {

/// Half the extent of "everything", in pixels: more than any sheet at the finest resolution, but
/// few enough rows to keep regions cheap.
constexpr LONG kFarthest = 1 << 16;
constexpr RECTL kEverything{-kFarthest, -kFarthest, kFarthest, kFarthest};

Region RectangleRegion(const RECTL& rect) {
  Region region(CreateRectRgn(rect.left, rect.top, rect.right, rect.bottom));
  if (!region) throw std::bad_alloc();
  return region;
}

RECTFX ToFix(const RECTL& rect) {
  return {LTOFX(rect.left), LTOFX(rect.top), LTOFX(rect.right), LTOFX(rect.bottom)};
}

}  // namespace

struct ClipShape::State {
  explicit State(Region owned) : region(std::move(owned)) {
    RECT box{};
    const int kind = GetRgnBox(region.Get(), &box);
    bounds = {box.left, box.top, box.right, box.bottom};
    empty = kind == NULLREGION;
    rectangle = kind != COMPLEXREGION;
  }

  Region region;
  RECTL bounds{};
  bool empty = false;
  bool rectangle = false;
  bool unbounded = false;
  /// Polygons whose alternate fill is the region, if they are known more exactly than by it.
  std::optional<std::vector<Polygon>> exact;
  mutable std::optional<Path> outline;  // made on demand
};

ClipShape::ClipShape() {
  static const std::shared_ptr<const State> everything = [] {
    auto state = std::make_shared<State>(RectangleRegion(kEverything));
    state->unbounded = true;
    return state;
  }();
  state_ = everything;
}

ClipShape::ClipShape(const RECTL& rect) : state_(std::make_shared<State>(RectangleRegion(rect))) {}

ClipShape ClipShape::OfRegion(HRGN region) {
  Region copy = RectangleRegion({});
  if (CombineRgn(copy.Get(), region, nullptr, RGN_COPY) == ERROR) throw std::bad_alloc();
  return ClipShape(std::make_shared<State>(std::move(copy)));
}

ClipShape ClipShape::OfPath(const Path& path, FillMode mode) {
  std::vector<Polygon> polygons = ClipPolygons(ToPolygons(path), ToFix(kEverything));
  auto state = std::make_shared<State>(FillPolygons(polygons, mode));
  // Outlines are filled by the alternate rule; for a winding path that may be a different region.
  const bool alternate =
      mode == FillMode::kAlternate ||
      EqualRgn(state->region.Get(), FillPolygons(polygons, FillMode::kAlternate).Get());
  if (alternate && !state->rectangle) state->exact = std::move(polygons);
  return ClipShape(std::move(state));
}

ClipShape ClipShape::Combined(const ClipShape& other, int mode) const {
  if (mode == RGN_COPY) return other;
  if (mode == RGN_AND && other.Unbounded()) return *this;
  if (mode == RGN_AND && Unbounded()) return other;

  Region region = RectangleRegion({});
  if (CombineRgn(region.Get(), Handle(), other.Handle(), mode) == ERROR) throw std::bad_alloc();
  auto state = std::make_shared<State>(std::move(region));
  if (mode == RGN_AND && !state->rectangle) {
    if (state_->exact && other.IsRectangle()) {
      state->exact = ClipPolygons(*state_->exact, ToFix(other.Bounds()));
    } else if (other.state_->exact && IsRectangle()) {
      state->exact = ClipPolygons(*other.state_->exact, ToFix(Bounds()));
    }
  }
  return ClipShape(std::move(state));
}

ClipShape ClipShape::Offset(LONG dx, LONG dy) const {
  if (Unbounded()) return *this;
  Region region = RectangleRegion({});
  if (CombineRgn(region.Get(), Handle(), nullptr, RGN_COPY) == ERROR ||
      OffsetRgn(region.Get(), dx, dy) == ERROR) {
    throw std::bad_alloc();
  }
  auto state = std::make_shared<State>(std::move(region));
  if (state_->exact) {
    state->exact = state_->exact;
    for (Polygon& polygon : *state->exact) {
      for (POINTFIX& point : polygon) point = {point.x + LTOFX(dx), point.y + LTOFX(dy)};
    }
  }
  return ClipShape(std::move(state));
}

bool ClipShape::Unbounded() const { return state_->unbounded; }

bool ClipShape::Empty() const { return state_->empty; }

RECTL ClipShape::Bounds() const { return state_->bounds; }

bool ClipShape::IsRectangle() const { return state_->rectangle; }

size_t ClipShape::RectangleCount() const {
  return (GetRegionData(Handle(), 0, nullptr) - sizeof(RGNDATAHEADER)) / sizeof(RECT);
}

bool ClipShape::Contains(const RECTL& rect) const {
  const RECTL& b = state_->bounds;
  const bool inside_bounds =
      rect.left >= b.left && rect.top >= b.top && rect.right <= b.right && rect.bottom <= b.bottom;
  if (!inside_bounds || state_->rectangle) return inside_bounds;
  const Region rest = RectangleRegion(rect);
  return CombineRgn(rest.Get(), rest.Get(), Handle(), RGN_DIFF) == NULLREGION;
}

bool ClipShape::Intersects(const RECTL& rect) const {
  const RECT area{rect.left, rect.top, rect.right, rect.bottom};
  return RectInRegion(Handle(), &area) != FALSE;
}

HRGN ClipShape::Handle() const { return state_->region.Get(); }

const Path& ClipShape::Outline() const {
  if (!state_->outline) {
    state_->outline = ToPath(state_->exact ? *state_->exact : OutlineRegion(Handle()));
  }
  return *state_->outline;
}

}  // namespace quillo::host
