#include <algorithm>
#include <cmath>

#include "host/engine/graphics.h"
#include "host/engine/raster.h"

// Gradients, which no driver of this kind hooks: pictures of them are drawn instead.
namespace quillo::host {
namespace {

/// More colours than this never lie between two colours of 8 bits a channel.
constexpr LONG kMostSteps = 1024;

struct Color {
  double red, green, blue;
};

/// The channels of a vertex, 0 to 255.
Color ColorOf(const TRIVERTEX& vertex) {
  return {vertex.Red / 256.0, vertex.Green / 256.0, vertex.Blue / 256.0};
}

uint32_t Pack(const Color& color) {
  const auto byte = [](double value) {
    return static_cast<uint32_t>(std::clamp(value, 0.0, 255.0));
  };
  return byte(color.red) << 16 | byte(color.green) << 8 | byte(color.blue) | kOpaque;
}

/// a * wa + b * wb + c * wc
Color Mix(const Color& a, double wa, const Color& b, double wb, const Color& c, double wc) {
  return {a.red * wa + b.red * wb + c.red * wc, a.green * wa + b.green * wb + c.green * wc,
          a.blue * wa + b.blue * wb + c.blue * wc};
}

}  // namespace

void Graphics::FillTriangle(const TRIVERTEX (&corners)[3], const DrawState& state) {
  const TRIVERTEX &a = corners[0], &b = corners[1], &c = corners[2];
  const double determinant =
      static_cast<double>(b.x - a.x) * (c.y - a.y) - static_cast<double>(c.x - a.x) * (b.y - a.y);
  const RECTL area = Visible({std::min({a.x, b.x, c.x}), std::min({a.y, b.y, c.y}),
                              std::max({a.x, b.x, c.x}), std::max({a.y, b.y, c.y})},
                             state.clip);
  if (determinant == 0 || area.left >= area.right || area.top >= area.bottom) return;

  BitmapSource picture = MakeArgb(area.right - area.left, area.bottom - area.top);
  for (LONG y = 0; y < picture.height; ++y) {
    for (LONG x = 0; x < picture.width; ++x) {
      // Barycentric weights of the pixel's centre; edges belong to both triangles beside them.
      const double dx = area.left + x + 0.5 - a.x, dy = area.top + y + 0.5 - a.y;
      const double wb = (dx * (c.y - a.y) - dy * (c.x - a.x)) / determinant;
      const double wc = (dy * (b.x - a.x) - dx * (b.y - a.y)) / determinant;
      const double wa = 1 - wb - wc;
      if (wa < 0 || wb < 0 || wc < 0) continue;
      SetPixel(picture, x, y, Pack(Mix(ColorOf(a), wa, ColorOf(b), wb, ColorOf(c), wc)));
    }
  }
  LayOver(area, picture, state);
}

void Graphics::GradientFill(std::span<const TRIVERTEX> vertices, std::span<const ULONG> mesh,
                            ULONG mode, const DrawState& state) {
  const size_t corners = mode == GRADIENT_FILL_TRIANGLE ? 3 : 2;
  for (size_t i = 0; i + corners <= mesh.size(); i += corners) {
    const auto numbers = mesh.subspan(i, corners);
    if (std::any_of(numbers.begin(), numbers.end(),
                    [&](ULONG number) { return number >= vertices.size(); })) {
      continue;
    }
    if (mode == GRADIENT_FILL_TRIANGLE) {
      FillTriangle({vertices[numbers[0]], vertices[numbers[1]], vertices[numbers[2]]}, state);
      continue;
    }
    // One row or column of colours, stretched over the rectangle.
    const TRIVERTEX &first = vertices[numbers[0]], &last = vertices[numbers[1]];
    const bool across = mode == GRADIENT_FILL_RECT_H;
    const LONG length = across ? std::abs(last.x - first.x) : std::abs(last.y - first.y);
    const LONG steps = std::min(length, kMostSteps);
    if (steps == 0) continue;
    BitmapSource picture = across ? MakeArgb(steps, 1) : MakeArgb(1, steps);
    for (LONG step = 0; step < steps; ++step) {
      const double t = static_cast<double>(step) / steps;
      SetPixel(picture, across ? step : 0, across ? 0 : step,
               Pack(Mix(ColorOf(first), 1 - t, ColorOf(last), t, {}, 0)) & ~kOpaque);
    }
    StretchBlt({first.x, first.y, last.x, last.y}, picture, {0, 0, picture.width, picture.height},
               0xCC, nullptr, COLORONCOLOR, state);
  }
}

}  // namespace quillo::host
