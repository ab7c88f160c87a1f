#include <algorithm>
#include <cmath>

#include "host/engine/blit_areas.h"
#include "host/engine/graphics.h"
#include "host/engine/raster.h"
#include "host/engine/raster_operation.h"

// Gradients, which no driver of this kind hooks: they are drawn as pictures.
namespace quillo::host {
namespace {

/// There are never more colours than this between two colours of 8 bits a channel.
constexpr LONG kMaxSteps = 1024;

struct Colour {
  double red, green, blue;
};

/// The channels of a vertex, 0 to 255.
Colour ColourOf(const TRIVERTEX& vertex) {
  return {vertex.Red / 256.0, vertex.Green / 256.0, vertex.Blue / 256.0};
}

uint32_t Pack(const Colour& colour) {
  const auto byte = [](double value) {
    return static_cast<uint32_t>(std::clamp(value, 0.0, 255.0));
  };
  return byte(colour.red) << 16 | byte(colour.green) << 8 | byte(colour.blue);
}

/// How many colours of 8 bits a channel there are between the corners.
LONG TonesBetween(const TRIVERTEX (&corners)[3]) {
  const auto spread = [&](COLOR16 TRIVERTEX::*channel) {
    const auto [min, max] =
        std::minmax({corners[0].*channel, corners[1].*channel, corners[2].*channel});
    return (max >> 8) - (min >> 8) + 1;
  };
  return std::max({spread(&TRIVERTEX::Red), spread(&TRIVERTEX::Green), spread(&TRIVERTEX::Blue)});
}

/// a * wa + b * wb + c * wc
Colour Mix(const Colour& a, double wa, const Colour& b, double wb, const Colour& c, double wc) {
  return {a.red * wa + b.red * wb + c.red * wc, a.green * wa + b.green * wb + c.green * wc,
          a.blue * wa + b.blue * wb + c.blue * wc};
}

}  // namespace

void Graphics::FillTriangle(const TRIVERTEX (&corners)[3], const DrawState& state) {
  const TRIVERTEX &a = corners[0], &b = corners[1], &c = corners[2];
  const double determinant =
      static_cast<double>(b.x - a.x) * (c.y - a.y) - static_cast<double>(c.x - a.x) * (b.y - a.y);
  Path outline;
  outline.MoveTo(a.x, a.y);
  outline.LineTo(b.x, b.y);
  outline.LineTo(c.x, c.y);
  outline.CloseFigure();
  DrawState inside = state;
  inside.clip = state.clip.Combined(ClipShape::OfPath(outline, FillMode::kAlternate), RGN_AND);
  const RECTL area = Visible(inside.clip.Bounds(), inside.clip);
  if (determinant == 0 || IsEmpty(area)) return;

  // The colours continue beyond the edges, which the clip cuts. The picture needs no more pixels
  // than there are distinct colours of eight bits.
  const LONG width = area.right - area.left, height = area.bottom - area.top;
  const LONG tones = TonesBetween(corners);
  const SIZEL size = {std::min(width, tones), std::min(height, tones)};
  if (!MayMake("DrvStretchBlt", kArgbBytes * size.cx * size.cy)) return;
  BitmapSource picture = MakeArgb(size.cx, size.cy);
  for (LONG y = 0; y < picture.height; ++y) {
    for (LONG x = 0; x < picture.width; ++x) {
      const double dx = area.left + (x + 0.5) * width / picture.width - a.x;
      const double dy = area.top + (y + 0.5) * height / picture.height - a.y;
      const double wb = (dx * (c.y - a.y) - dy * (c.x - a.x)) / determinant;
      const double wc = (dy * (b.x - a.x) - dx * (b.y - a.y)) / determinant;
      SetPixel(picture, x, y,
               Pack(Mix(ColourOf(a), 1 - wb - wc, ColourOf(b), wb, ColourOf(c), wc)));
    }
  }
  StretchBlt(area, picture, WholeOf(picture), kSourceCopy, nullptr, COLORONCOLOR, inside);
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
    const LONG steps = std::min(length, kMaxSteps);
    if (steps == 0) continue;
    BitmapSource picture = across ? MakeArgb(steps, 1) : MakeArgb(1, steps);
    for (LONG step = 0; step < steps; ++step) {
      const double t = static_cast<double>(step) / steps;
      SetPixel(picture, across ? step : 0, across ? 0 : step,
               Pack(Mix(ColourOf(first), 1 - t, ColourOf(last), t, {}, 0)));
    }
    StretchBlt({first.x, first.y, last.x, last.y}, picture, WholeOf(picture), kSourceCopy, nullptr,
               COLORONCOLOR, state);
  }
}

}  // namespace quillo::host
