#include "host/emf_player/region_data.h"

#include <algorithm>
#include <new>
#include <span>
#include <utility>
#include <vector>

#include "base/gdi_owners.h"
#include "host/emf_player/logical_pen.h"
#include "host/emf_player/path_work.h"
#include "host/emf_player/rounding.h"
#include "host/emf_player/work_budget.h"

namespace quillo::host::emf {

namespace {

constexpr size_t kHeaderBytes = 32;  // RGNDATAHEADER

// Rectangles in bands, as GDI writes them, make a region of as many rectangles; others can make one
// of the square of their number.
constexpr size_t kMaxUnordered = 2000;

/// Whether the rectangles come in bands from top to bottom, and from left to right in each band.
bool InBands(std::span<const RectL> rects) {
  for (size_t i = 1; i < rects.size(); ++i) {
    const RectL& a = rects[i - 1];
    const RectL& b = rects[i];
    const bool same_band = a.top == b.top && a.bottom == b.bottom;
    if (same_band ? b.left < a.right : b.top < a.bottom) return false;
  }
  return true;
}

/// The union of the mapped rectangles. Joins halves, so that few large regions are built.
Region Union(std::span<const RectL> rects, const Transform& to_page) {
  if (rects.size() == 1) {
    const RECTL rect =
        ToPixelRect(to_page, rects[0].left, rects[0].top, rects[0].right, rects[0].bottom);
    Region region(CreateRectRgn(rect.left, rect.top, rect.right, rect.bottom));
    if (!region) throw std::bad_alloc();
    return region;
  }
  const size_t half = rects.size() / 2;
  Region first = Union(rects.first(half), to_page);
  const Region second = Union(rects.subspan(half), to_page);
  if (CombineRgn(first.Get(), first.Get(), second.Get(), RGN_OR) == ERROR) throw std::bad_alloc();
  return first;
}

void AddRectangle(Path& path, const RectL& rect, const Transform& to_page) {
  LogicalPen pen(path, to_page);
  pen.MoveTo(PointL{rect.left, rect.top});
  pen.LineTo(PointL{rect.right, rect.top});
  pen.LineTo(PointL{rect.right, rect.bottom});
  pen.LineTo(PointL{rect.left, rect.bottom});
  pen.CloseFigure();
}

RectL BoundsOf(std::span<const RectL> rects) {
  RectL all = rects[0];
  for (const RectL& rect : rects) {
    all = {std::min(all.left, rect.left), std::min(all.top, rect.top),
           std::max(all.right, rect.right), std::max(all.bottom, rect.bottom)};
  }
  return all;
}

}  // namespace

ClipShape MapRectangle(const RectL& rect, const Transform& to_page) {
  if (to_page.KeepsAxes()) {
    return ClipShape(ToPixelRect(to_page, rect.left, rect.top, rect.right, rect.bottom));
  }
  Path path;
  AddRectangle(path, rect, to_page);
  return ClipShape::OfPath(path, FillMode::kWinding);
}

std::optional<ClipShape> ReadRegion(PayloadReader& record, size_t size, const Transform& to_page,
                                    std::string& what) {
  const auto header_size = record.Read<uint32_t>();
  const auto type = record.Read<uint32_t>();
  const auto count = record.Read<uint32_t>();
  record.Skip(4 + sizeof(RectL));  // bytes of the rectangles; bounds
  if (record.ok() && (header_size != kHeaderBytes || type != RDH_RECTANGLES ||
                      size < kHeaderBytes || count > (size - kHeaderBytes) / sizeof(RectL))) {
    what = "its " + std::to_string(size) + " bytes of region data do not hold " +
           std::to_string(count) + " rectangles";
    return std::nullopt;
  }
  std::vector<RectL> rects = record.ReadArray<RectL>(count);
  if (!record.ok()) return std::nullopt;
  std::erase_if(
      rects, [](const RectL& rect) { return rect.left >= rect.right || rect.top >= rect.bottom; });
  if (rects.empty()) return ClipShape(RECTL{});
  if (rects.size() == 1) return MapRectangle(rects[0], to_page);
  if (rects.size() > kMaxUnordered && !InBands(rects)) {
    what = "a region of " + std::to_string(rects.size()) +
           " unordered rectangles; its bounds are taken";
    return MapRectangle(BoundsOf(rects), to_page);
  }
  if (to_page.KeepsAxes()) return ClipShape::OfRegion(Union(rects, to_page).Get());
  Path path;
  for (const RectL& rect : rects) AddRectangle(path, rect, to_page);
  if (Crossings(path) > kMaxCrossings) {
    what = "a turned region of " + std::to_string(rects.size()) +
           " rectangles that is too intricate; its bounds are taken";
    return MapRectangle(BoundsOf(rects), to_page);
  }
  return ClipShape::OfPath(path, FillMode::kWinding);
}

}  // namespace quillo::host::emf
