// Records that fill with gradients.

#include <algorithm>

#include "host/emf/playback.h"
#include "host/emf/rounding.h"

namespace quillo::host::emf {

namespace {

/// Rectangles of a gradient as two triangles each, for a map that turns them; adds the two corners
/// that a rectangle does not name.
std::vector<ULONG> SplitRectangles(std::vector<TRIVERTEX>& vertices, const std::vector<ULONG>& mesh,
                                   ULONG mode) {
  std::vector<ULONG> triangles;
  const size_t given = vertices.size();
  for (size_t i = 0; i + 1 < mesh.size(); i += 2) {
    if (mesh[i] >= given || mesh[i + 1] >= given) continue;
    // Copies, as the list grows. Colours run from the first to the second corner.
    const TRIVERTEX a = vertices[mesh[i]], b = vertices[mesh[i + 1]];
    TRIVERTEX beside = a, below = a;
    if (mode == GRADIENT_FILL_RECT_H) beside = b;
    if (mode == GRADIENT_FILL_RECT_V) below = b;
    beside.x = b.x;
    beside.y = a.y;
    below.x = a.x;
    below.y = b.y;
    const ULONG next = static_cast<ULONG>(vertices.size());
    vertices.insert(vertices.end(), {beside, below});
    triangles.insert(triangles.end(), {mesh[i], next, next + 1, mesh[i + 1], next, next + 1});
  }
  return triangles;
}

/// Triangles are shaded pixel by pixel; leaves out those for which the file has no work left.
void SpendOnTriangles(Playback& dc, const std::vector<TRIVERTEX>& vertices,
                      std::vector<ULONG>& mesh) {
  constexpr double kPixelsPerPoint = 100;  // a shaded pixel is that much cheaper
  for (size_t i = 0; i + 2 < mesh.size(); i += 3) {
    if (std::max({mesh[i], mesh[i + 1], mesh[i + 2]}) >= vertices.size()) continue;
    const TRIVERTEX& a = vertices[mesh[i]];
    const TRIVERTEX& b = vertices[mesh[i + 1]];
    const TRIVERTEX& c = vertices[mesh[i + 2]];
    const double width = double{1} * std::max({a.x, b.x, c.x}) - std::min({a.x, b.x, c.x});
    const double height = double{1} * std::max({a.y, b.y, c.y}) - std::min({a.y, b.y, c.y});
    const SIZEL page = dc.canvas().Size();
    const double area = std::min<double>(width, page.cx) * std::min<double>(height, page.cy);
    if (dc.Spend(50 + area / kPixelsPerPoint)) continue;
    mesh.resize(i);
    return;
  }
}

void PlayGradientFill(Playback& dc, PayloadReader& record) {
  record.Skip(sizeof(RectL));  // bounds
  const auto vertex_count = record.Read<uint32_t>();
  const auto shape_count = record.Read<uint32_t>();
  const auto mode = record.Read<uint32_t>();
  auto vertices = record.ReadArray<TRIVERTEX>(vertex_count);
  if (mode > GRADIENT_FILL_TRIANGLE) {
    dc.Fault("there is no mode " + std::to_string(mode));
    return;
  }
  const size_t corners = mode == GRADIENT_FILL_TRIANGLE ? 3 : 2;
  auto mesh = record.ReadArray<ULONG>(size_t{shape_count} * corners);
  if (!record.ok()) return;
  ULONG drawn_as = mode;
  if (mode != GRADIENT_FILL_TRIANGLE && !dc.ToPage().KeepsAxes()) {
    mesh = SplitRectangles(vertices, mesh, mode);
    drawn_as = GRADIENT_FILL_TRIANGLE;
  }
  for (TRIVERTEX& vertex : vertices) {
    const PointD at = dc.ToPage().Apply(vertex.x, vertex.y);
    vertex.x = ToPixel(at.x);
    vertex.y = ToPixel(at.y);
  }
  if (drawn_as == GRADIENT_FILL_TRIANGLE) SpendOnTriangles(dc, vertices, mesh);
  dc.canvas().GradientFill(vertices, mesh, drawn_as, dc.Drawing());
}

}  // namespace

void AddGradientHandlers(HandlerTable& table) { table[kEmrGRADIENTFILL] = PlayGradientFill; }

}  // namespace quillo::host::emf
