// Run-length streams through the decoder, beside one that goes pixel by pixel.
#include <algorithm>
#include <cstdlib>
#include <vector>

#include "imaging/dib/rle.h"
#include "imaging/pixels/geometry.h"
#include "imaging/pixels/pixel_bits.h"
#include "imaging/pixels/result.h"

namespace quillo::imaging {
namespace {

void Check(bool holds) {
  if (!holds) std::abort();
}

/// A run-length stream, one pixel at a time.
std::vector<uint32_t> NaiveRle(Bytes stream, uint32_t bits, uint32_t width, uint32_t height) {
  std::vector<uint32_t> pixels(size_t{width} * height);
  uint64_t x = 0, y = 0;
  const auto put = [&](uint32_t value) {
    if (x < width && y < height) pixels[y * width + x] = value;
    ++x;
  };
  const auto at = [&](size_t i) { return static_cast<uint32_t>(stream[i]); };
  const auto half = [bits](uint32_t pair, size_t i) {
    return bits == 8 ? pair : i % 2 == 0 ? pair >> 4 : pair & 15;
  };
  for (size_t i = 0; i + 1 < stream.size() && y < height;) {
    const uint32_t count = at(i), value = at(i + 1);
    i += 2;
    if (count != 0) {
      for (size_t n = 0; n < count; ++n) put(half(value, n));
    } else if (value == 0) {
      x = 0;
      ++y;
    } else if (value == 1) {
      break;
    } else if (value == 2) {
      if (i + 1 >= stream.size()) break;
      // A position beyond the row's end stays there.
      x = std::min<uint64_t>(std::min<uint64_t>(x, width) + at(i), width);
      y += at(i + 1);
      i += 2;
    } else {
      const size_t size = bits == 8 ? value : (value + 1) / 2;
      for (size_t n = 0; n < value && i + n * bits / 8 < stream.size(); ++n) {
        put(half(at(i + n * bits / 8), n));
      }
      i += size + size % 2;
    }
    x = std::min<uint64_t>(x, width);
  }
  return pixels;
}

/// A byte states the depth, two the width and two the height; the rest is the stream.
void TryRle(Bytes input) {
  const uint32_t bits = (LoadOrZero<uint8_t>(input) & 1) != 0 ? 8 : 4;
  const uint32_t width = LoadOrZero<uint16_t>(input, 1) % 128;
  const uint32_t height = LoadOrZero<uint16_t>(input, 3) % 128;
  const Bytes rest = input.subspan(std::min<size_t>(5, input.size()));
  const std::vector<std::byte> stream(rest.begin(), rest.end());
  const Geometry geometry = *MakeGeometry(width, height, bits);
  std::vector<std::byte> rows(geometry.data_size);
  std::vector<std::byte> scratch(geometry.bytes_per_line);
  int64_t last = -1;
  const int result = ExpandRle(stream, bits, width, height, scratch, [&](uint32_t row, Bytes data) {
    Check(row > last && row < height && data.size() == geometry.bytes_per_line);
    last = row;
    std::ranges::copy(data, rows.begin() + static_cast<ptrdiff_t>(row * data.size()));
    return kSuccess;
  });
  Check(result == kSuccess);
  const std::vector<uint32_t> naive = NaiveRle(stream, bits, width, height);
  for (uint32_t y = 0; y < height; ++y) {
    const std::byte* row = rows.data() + size_t{y} * geometry.bytes_per_line;
    for (uint32_t x = 0; x < width; ++x) {
      Check(LoadPixelBits(row, bits, x) == naive[size_t{y} * width + x]);
    }
  }
}

}  // namespace
}  // namespace quillo::imaging

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  quillo::imaging::TryRle(std::as_bytes(std::span(data, size)));
  return 0;
}
