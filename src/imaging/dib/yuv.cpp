#include "imaging/dib/yuv.h"

#include <algorithm>

namespace quillo::imaging {
namespace {

std::byte Limit(int value) { return static_cast<std::byte>(std::clamp(value >> 6, 0, 255)); }

/// One pixel, written as three bytes.
void ConvertPixel(std::byte y, std::byte u, std::byte v, std::byte* rgb) {
  const int luma = (static_cast<int>(y) * 257 * 19003 >> 16) - 1160;
  const int d = static_cast<int>(u) - 128;
  const int e = static_cast<int>(v) - 128;
  rgb[0] = Limit(luma + 129 * d);
  rgb[1] = Limit(luma - 25 * d - 52 * e);
  rgb[2] = Limit(luma + 102 * e);
}

/// Byte positions in a group of two pixels.
struct Positions {
  size_t y0;
  size_t y1;
  size_t u;
  size_t v;
};

void PairRow(Bytes source, uint32_t width, const Positions& at, std::byte* rgb) {
  for (uint32_t x = 0; x + 1 < width; x += 2) {
    const std::byte* group = source.data() + size_t{x} * 2;
    ConvertPixel(group[at.y0], group[at.u], group[at.v], rgb + size_t{x} * 3);
    ConvertPixel(group[at.y1], group[at.u], group[at.v], rgb + size_t{x} * 3 + 3);
  }
}

}  // namespace

void PlanarRow420(const std::byte* y, const std::byte* u, const std::byte* v, uint32_t width,
                  std::byte* rgb) {
  for (size_t x = 0; x < width; ++x) ConvertPixel(y[x], u[x / 2], v[x / 2], rgb + x * 3);
}

void PlanarRow410(const std::byte* y, const std::byte* u, const std::byte* v, uint32_t width,
                  std::byte* rgb) {
  for (size_t x = 0; x < width; ++x) ConvertPixel(y[x], u[x / 4], v[x / 4], rgb + x * 3);
}

void Yuy2Row(Bytes source, uint32_t width, std::byte* rgb) {
  PairRow(source, width, {.y0 = 0, .y1 = 2, .u = 1, .v = 3}, rgb);
}

void UyvyRow(Bytes source, uint32_t width, std::byte* rgb) {
  PairRow(source, width, {.y0 = 1, .y1 = 3, .u = 0, .v = 2}, rgb);
}

void YvyuRow(Bytes source, uint32_t width, std::byte* rgb) {
  PairRow(source, width, {.y0 = 0, .y1 = 2, .u = 3, .v = 1}, rgb);
}

void Packed411Row(Bytes source, uint32_t width, std::byte* rgb) {
  constexpr size_t kLuma[8] = {1, 3, 5, 7, 8, 9, 10, 11};
  for (size_t x = 0; x < width; ++x) {
    const size_t group = x / 8 * 12;
    const size_t chroma = group + x % 8 / 4 * 4;
    const size_t luma = std::min(group + kLuma[x % 8], source.size() - 1);
    ConvertPixel(source[luma], source[chroma], source[chroma + 2], rgb + x * 3);
  }
}

void Packed211Row(Bytes source, uint32_t width, std::byte* rgb) {
  std::byte v{128};
  for (size_t x = 0; x < width; ++x) {
    const size_t group = x / 4 * 4;
    if (group + 3 < source.size()) v = source[group + 3];
    ConvertPixel(source[group + x % 4 / 2 * 2], source[group + 1], v, rgb + x * 3);
  }
}

}  // namespace quillo::imaging
