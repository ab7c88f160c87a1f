#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <new>

#include "host/engine/polygons.h"

namespace quillo::host {
namespace {

/// A corner of a region's border: exactly one horizontal and one vertical edge meet there. (Where
/// two parts touch at a point, the borders run straight through each other.)
struct Corner {
  LONG x, y;
  size_t beside;          // corner at the other end of the horizontal edge
  size_t above_or_below;  // corner at the other end of the vertical edge
  bool visited;
};

/// Finds the corners from the x positions where each band of a region begins and ends its spans.
class CornerFinder {
 public:
  /// `edges` are the sorted x positions of all span ends below the line y (empty: nothing there).
  void AddLine(LONG y, const std::vector<LONG>& edges) {
    constexpr int64_t kBeyondAll = int64_t{LONG_MAX} + 1;
    const size_t first = corners_.size();
    auto above = above_.begin();
    const auto add_corner = [&](LONG x) {
      const size_t index = corners_.size();
      corners_.push_back({x, y, (index - first) % 2 == 0 ? index + 1 : index - 1, 0, false});
      return index;
    };
    const auto end_edges_before = [&](int64_t x) {
      for (; above != above_.end() && above->x < x; ++above) {
        const size_t index = add_corner(above->x);
        corners_[index].above_or_below = above->upper;
        corners_[above->upper].above_or_below = index;
      }
    };
    below_.clear();
    for (const LONG x : edges) {
      end_edges_before(x);
      const bool continues = above != above_.end() && above->x == x;
      below_.push_back({x, continues ? (above++)->upper : add_corner(x)});
    }
    end_edges_before(kBeyondAll);
    above_.swap(below_);
  }
  std::vector<Corner>& Corners() { return corners_; }

 private:
  struct VerticalEdge {
    LONG x;
    size_t upper;  // corner
  };
  std::vector<VerticalEdge> above_, below_;  // of the line, left to right
  std::vector<Corner> corners_;
};

/// Measures the distance of points from the line through two points, or from these if they are one.
class DistanceFromLine {
 public:
  DistanceFromLine(const POINTFIX& a, const POINTFIX& b)
      : a_(a), dx_(static_cast<double>(b.x) - a.x), dy_(static_cast<double>(b.y) - a.y) {}
  double operator()(const POINTFIX& p) const {
    const double x = static_cast<double>(p.x) - a_.x, y = static_cast<double>(p.y) - a_.y;
    return length_ == 0 ? std::hypot(x, y) : std::abs(dx_ * y - dy_ * x) / length_;
  }

 private:
  POINTFIX a_;
  double dx_, dy_;
  double length_ = std::hypot(dx_, dy_);
};

double Area(const Polygon& polygon) {
  double area = 0;
  for (size_t i = 0; i < polygon.size(); ++i) {
    const POINTFIX &a = polygon[i], &b = polygon[(i + 1) % polygon.size()];
    area += static_cast<double>(a.x) * b.y - static_cast<double>(b.x) * a.y;
  }
  return area / 2;
}

/// Drops points less than a pixel from the line between kept ones (Douglas and Peucker's algorithm,
/// on the two halves of the closed polygon).
Polygon StraightenSteps(const Polygon& polygon) {
  constexpr double kTolerance = 0.99 * 16;
  constexpr size_t kWorthwhile = 8;
  if (polygon.size() <= kWorthwhile) return polygon;

  std::vector<bool> kept(polygon.size() + 1);
  const size_t middle = polygon.size() / 2;
  kept[0] = kept[middle] = kept[polygon.size()] = true;
  std::vector<std::pair<size_t, size_t>> pending{{0, middle}, {middle, polygon.size()}};
  while (!pending.empty()) {
    const auto [first, last] = pending.back();
    pending.pop_back();
    const DistanceFromLine distance_of(polygon[first], polygon[last % polygon.size()]);
    double farthest = kTolerance;
    size_t split = 0;
    for (size_t i = first + 1; i < last; ++i) {
      const double distance = distance_of(polygon[i]);
      if (distance > farthest) {
        farthest = distance;
        split = i;
      }
    }
    if (split == 0) continue;
    kept[split] = true;
    pending.emplace_back(first, split);
    pending.emplace_back(split, last);
  }

  Polygon straightened;
  for (size_t i = 0; i < polygon.size(); ++i) {
    if (kept[i]) straightened.push_back(polygon[i]);
  }
  // Shapes about as thin as the tolerance would lose their area: those stay as they are.
  const double before = std::abs(Area(polygon)), after = std::abs(Area(straightened));
  return straightened.size() >= 3 && std::abs(after - before) < before / 8 ? straightened : polygon;
}

}  // namespace

std::vector<RECT> RectanglesOf(HRGN region) {
  std::vector<std::byte> buffer(GetRegionData(region, 0, nullptr));
  auto* data = reinterpret_cast<RGNDATA*>(buffer.data());
  if (buffer.empty() || GetRegionData(region, static_cast<DWORD>(buffer.size()), data) == 0) {
    throw std::bad_alloc();
  }
  const auto* rects = reinterpret_cast<const RECT*>(data->Buffer);
  return {rects, rects + data->rdh.nCount};
}

std::vector<Polygon> OutlineRegion(HRGN region) {
  const std::vector<RECT> rects = RectanglesOf(region);
  CornerFinder finder;
  std::vector<LONG> edges;
  // The rectangles come in bands: equal top and bottom, left to right, not touching each other.
  for (size_t i = 0; i < rects.size();) {
    const LONG top = rects[i].top, bottom = rects[i].bottom;
    edges.clear();
    for (; i < rects.size() && rects[i].top == top; ++i) {
      edges.push_back(rects[i].left);
      edges.push_back(rects[i].right);
    }
    finder.AddLine(top, edges);
    const bool continues = i < rects.size() && rects[i].top == bottom;
    if (!continues) finder.AddLine(bottom, {});
  }

  std::vector<Polygon> outline;
  std::vector<Corner>& corners = finder.Corners();
  for (size_t start = 0; start < corners.size(); ++start) {
    if (corners[start].visited) continue;
    Polygon polygon;
    for (size_t at = start; !corners[at].visited; at = corners[at].beside) {
      // The vertical edge goes first.
      for (const size_t corner : {at, corners[at].above_or_below}) {
        corners[corner].visited = true;
        polygon.push_back({LTOFX(corners[corner].x), LTOFX(corners[corner].y)});
      }
      at = corners[at].above_or_below;
    }
    outline.push_back(StraightenSteps(polygon));
  }
  return outline;
}

}  // namespace quillo::host
