#pragma once

#include "base/ddi.h"

#include <memory>
#include <utility>

#include "host/engine/path.h"

namespace quillo::host {

/// The pixels that drawing may touch: everything, a rectangle, or any region. A value: copies are
/// cheap and share what they hold, so that a DC state can be saved and restored.
///
/// Where the shape is one path, its exact outline is kept beside the region, and stays while the
/// shape is only cut by rectangles.
class ClipShape {
 public:
  ClipShape();  // everything
  explicit ClipShape(const RECTL& rect);
  /// Copies the region; the caller keeps it.
  static ClipShape OfRegion(HRGN region);
  /// The inside of a path, open figures closed.
  static ClipShape OfPath(const Path& path, FillMode mode);

  /// This shape combined with `other` as CombineRgn does: RGN_AND, RGN_OR, RGN_XOR, RGN_DIFF (this
  /// without other) or RGN_COPY (other).
  ClipShape Combined(const ClipShape& other, int mode) const;
  ClipShape Offset(LONG dx, LONG dy) const;

  /// Whether both share what they hold; equal shapes made apart are not known to be the same.
  bool SameAs(const ClipShape& other) const { return state_ == other.state_; }
  bool Unbounded() const;
  bool Empty() const;
  /// The smallest rectangle around the shape.
  RECTL Bounds() const;
  /// Whether the shape is its bounding rectangle.
  bool IsRectangle() const;
  /// How many rectangles its region holds: what combining and outlining it costs.
  size_t RectangleCount() const;
  bool Contains(const RECTL& rect) const;
  bool Intersects(const RECTL& rect) const;
  /// The region behind the shape, in device pixels; owned by the shape.
  HRGN Handle() const;
  /// Closed figures whose alternate fill is the shape; made at the first call and kept.
  const Path& Outline() const;

 private:
  struct State;
  explicit ClipShape(std::shared_ptr<const State> state) : state_(std::move(state)) {}

  std::shared_ptr<const State> state_;
};

}  // namespace quillo::host
