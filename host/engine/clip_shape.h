#pragma once

#include "base/ddi.h"

#include <memory>
#include <utility>

#include "host/engine/path.h"

namespace quillo::host {

/// The pixels that drawing may touch: everything, a rectangle, or any region. A value: copies are
/// cheap and share their contents, so that a DC state can be saved and restored.
///
/// If the shape is a single path, its exact outline is kept as well, for as long as it is only
/// intersected with rectangles.
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

  /// Whether both share their contents. Equal shapes that were made independently do not.
  bool SameAs(const ClipShape& other) const { return state_ == other.state_; }
  bool Unbounded() const;
  bool Empty() const;
  /// The smallest rectangle around the shape.
  RECTL Bounds() const;
  /// Whether the shape is its bounding rectangle.
  bool IsRectangle() const;
  /// How many rectangles its region has: the cost of combining and outlining it.
  size_t RectangleCount() const;
  bool Contains(const RECTL& rect) const;
  bool Intersects(const RECTL& rect) const;
  /// The region of the shape, in device pixels; owned by the shape.
  HRGN Handle() const;
  /// Closed figures whose alternate fill is the shape; made at the first call and kept.
  const Path& Outline() const;

 private:
  struct State;
  explicit ClipShape(std::shared_ptr<const State> state) : state_(std::move(state)) {}

  std::shared_ptr<const State> state_;
};

}  // namespace quillo::host
