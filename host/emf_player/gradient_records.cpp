// Records that fill with gradients.

#include <algorithm>

#include "host/emf_player/emf_player.h"
#include "host/emf_player/record_fields.h"
#include "host/emf_player/record_handlers.h"
#include "host/emf_player/rounding.h"

namespace quillo::host::emf {

namespace {

/// The rectangles of a gradient as two triangles each, for a map that rotates. Adds the two corners
/// that a rectangle does not name.
std::vector<ULONG> SplitRectangles(std::vector<TRIVERTEX>& vertices, const std::vector<ULONG>& mesh,
                                   ULONG mode) {
  std::vector<ULONG> triangles;
  const size_t count = vertices.size();
  for (size_t i = 0; i + 1 < mesh.size(); i += 2) {
    if (mesh[i] >= count || mesh[i + 1] >= count) continue;
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

// The work of one shape: a bracket of records with a picture of its colours.
constexpr double kPointsPerShape = 750;

void PlayGradientFill(EmfPlayer& player, PayloadReader& record) {
  SkipBounds(record);
  const auto vertex_count = record.Read<uint32_t>();
  const auto shape_count = record.Read<uint32_t>();
  const auto mode = record.Read<uint32_t>();
  auto vertices = record.ReadArray<TRIVERTEX>(vertex_count);
  if (mode > GRADIENT_FILL_TRIANGLE) {
    player.Fault("unknown mode " + std::to_string(mode));
    return;
  }
  const size_t corners = mode == GRADIENT_FILL_TRIANGLE ? 3 : 2;
  auto mesh = record.ReadArray<ULONG>(size_t{shape_count} * corners);
  if (!record.ok()) return;
  if (std::ranges::any_of(mesh, [&](ULONG number) { return number >= vertex_count; })) {
    player.Fault("a vertex index is out of range");
  }
  ULONG drawn_as = mode;
  if (mode != GRADIENT_FILL_TRIANGLE && !player.ToPage().KeepsAxes()) {
    mesh = SplitRectangles(vertices, mesh, mode);
    drawn_as = GRADIENT_FILL_TRIANGLE;
  }
  for (TRIVERTEX& vertex : vertices) {
    const PointD at = player.ToPage().Apply(vertex.x, vertex.y);
    vertex.x = ToPixel(at.x);
    vertex.y = ToPixel(at.y);
  }
  if (!player.Spend(kPointsPerShape * static_cast<double>(shape_count))) return;
  player.canvas().GradientFill(vertices, mesh, drawn_as, player.Drawing());
}

}  // namespace

void AddGradientHandlers(HandlerTable& table) { table[kEmrGRADIENTFILL] = PlayGradientFill; }

}  // namespace quillo::host::emf
