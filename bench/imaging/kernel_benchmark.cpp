// The kernel's arithmetic beside the libraries that people would pick instead, in one run: each
// kernel benchmark is followed by its competitor, and `ratio` says how many times as fast as the
// competitor the kernel was.
#include <benchmark/benchmark.h>
#include <cstring>
#include <libyuv.h>
#include <pixman.h>
#include <vector>

#include "imaging/dib_rows.h"
#include "imaging/nearest.h"
#include "imaging/yuv.h"

namespace quillo::imaging {
namespace {

std::vector<std::byte> Noise(size_t size) {
  std::vector<std::byte> bytes(size);
  uint32_t state = 1;
  for (std::byte& byte : bytes) {
    state = state * 1664525 + 1013904223;
    byte = static_cast<std::byte>(state >> 24);
  }
  return bytes;
}

constexpr uint32_t kSourceWidth = 3000;
constexpr uint32_t kSourceHeight = 2000;

class NearestBitmaps {
 public:
  NearestBitmaps(benchmark::State& state, uint32_t bits)
      : source(*MakeGeometry(kSourceWidth, kSourceHeight, bits)),
        target(*MakeGeometry(static_cast<uint32_t>(state.range(0)),
                             static_cast<uint32_t>(state.range(1)), bits)),
        from(Noise(source.data_size)),
        to(target.data_size) {}

  Geometry source;
  Geometry target;
  std::vector<std::byte> from;
  std::vector<std::byte> to;
};

void BM_Nearest(benchmark::State& state, uint32_t bits) {
  NearestBitmaps b(state, bits);
  std::vector<uint32_t> columns(b.target.width);
  std::vector<std::byte> row(b.target.bytes_per_line);
  for (auto _ : state) {
    ResizeNearest(
        b.source, b.target, columns, row,
        [&](uint32_t y) { return b.from.data() + size_t{y} * b.source.bytes_per_line; },
        [&](uint32_t y) { return b.to.data() + size_t{y} * b.target.bytes_per_line; },
        [](uint32_t, Bytes) { return 1; }, Progress(nullptr, nullptr, b.target.height));
    benchmark::ClobberMemory();
  }
}

void BM_LibyuvNearest32(benchmark::State& state) {
  NearestBitmaps b(state, 32);
  for (auto _ : state) {
    libyuv::ARGBScale(reinterpret_cast<const uint8_t*>(b.from.data()),
                      static_cast<int>(b.source.bytes_per_line), kSourceWidth, kSourceHeight,
                      reinterpret_cast<uint8_t*>(b.to.data()),
                      static_cast<int>(b.target.bytes_per_line), static_cast<int>(b.target.width),
                      static_cast<int>(b.target.height), libyuv::kFilterNone);
    benchmark::ClobberMemory();
  }
}

void BM_PixmanNearest24(benchmark::State& state) {
  NearestBitmaps b(state, 24);
  pixman_image_t* from = pixman_image_create_bits(PIXMAN_r8g8b8, kSourceWidth, kSourceHeight,
                                                  reinterpret_cast<uint32_t*>(b.from.data()),
                                                  static_cast<int>(b.source.bytes_per_line));
  pixman_image_t* to = pixman_image_create_bits(
      PIXMAN_r8g8b8, static_cast<int>(b.target.width), static_cast<int>(b.target.height),
      reinterpret_cast<uint32_t*>(b.to.data()), static_cast<int>(b.target.bytes_per_line));
  pixman_transform_t scale;
  pixman_transform_init_scale(&scale, pixman_double_to_fixed(double{kSourceWidth} / b.target.width),
                              pixman_double_to_fixed(double{kSourceHeight} / b.target.height));
  pixman_image_set_transform(from, &scale);
  pixman_image_set_filter(from, PIXMAN_FILTER_NEAREST, nullptr, 0);
  for (auto _ : state) {
    pixman_image_composite32(PIXMAN_OP_SRC, from, nullptr, to, 0, 0, 0, 0, 0, 0,
                             static_cast<int>(b.target.width), static_cast<int>(b.target.height));
    benchmark::ClobberMemory();
  }
  pixman_image_unref(from);
  pixman_image_unref(to);
}

void Sizes(benchmark::internal::Benchmark* b) {
  b->Args({2000, 1333})->Args({1234, 777})->Args({4000, 3000})->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(BM_Nearest, 32, 32u)->Apply(Sizes);
BENCHMARK(BM_LibyuvNearest32)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Nearest, 24, 24u)->Apply(Sizes);
BENCHMARK(BM_PixmanNearest24)->Apply(Sizes);

constexpr uint32_t kVideoWidth = 1920;
constexpr uint32_t kVideoHeight = 1080;

void BM_I420(benchmark::State& state) {
  const std::vector<std::byte> bits = Noise(kVideoWidth * kVideoHeight * 3 / 2);
  std::vector<std::byte> rows(kVideoWidth * kVideoHeight * 3);
  std::vector<std::byte> scratch(kVideoWidth * 3);
  Dib dib{};
  dib.layout = DibLayout::kPlanar420;
  dib.width = kVideoWidth;
  dib.height = kVideoHeight;
  for (auto _ : state) {
    ConvertDibRows(dib, bits, scratch, [&](uint32_t y, Bytes data) {
      std::memcpy(rows.data() + y * data.size(), data.data(), data.size());
      return 1;
    });
    benchmark::ClobberMemory();
  }
}

void BM_LibyuvI420(benchmark::State& state) {
  const std::vector<std::byte> bits = Noise(kVideoWidth * kVideoHeight * 3 / 2);
  std::vector<uint8_t> rows(kVideoWidth * kVideoHeight * 3);
  const auto* y = reinterpret_cast<const uint8_t*>(bits.data());
  const uint8_t* u = y + kVideoWidth * kVideoHeight;
  const uint8_t* v = u + kVideoWidth * kVideoHeight / 4;
  for (auto _ : state) {
    libyuv::I420ToRGB24(y, kVideoWidth, u, kVideoWidth / 2, v, kVideoWidth / 2, rows.data(),
                        kVideoWidth * 3, kVideoWidth, kVideoHeight);
    benchmark::ClobberMemory();
  }
}

BENCHMARK(BM_I420)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_LibyuvI420)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace quillo::imaging

BENCHMARK_MAIN();
