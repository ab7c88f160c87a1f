// The kernel's arithmetic beside the libraries that people would pick instead, in one run.
#include <benchmark/benchmark.h>
#include <cstring>
#include <libyuv.h>
#include <pixman.h>
#include <vector>

#include "bench/pair_reporter.h"
#include "imaging/dib/dib_rows.h"
#include "imaging/noise.h"
#include "imaging/scaling/nearest.h"

namespace quillo::imaging {
namespace {

template <typename To>
To* As(std::vector<std::byte>& bytes) {
  return reinterpret_cast<To*>(bytes.data());
}

/// A source of noise and room for the result.
struct NearestBitmaps {
  NearestBitmaps(const benchmark::State& state, uint32_t bits)
      : source(*MakeGeometry(3000, 2000, bits)),
        target(*MakeGeometry(static_cast<uint32_t>(state.range(0)),
                             static_cast<uint32_t>(state.range(1)), bits)),
        from(Noise(source.data_size)),
        to(target.data_size) {}

  Geometry source;
  Geometry target;
  std::vector<std::byte> from;
  std::vector<std::byte> to;
};

void Nearest(benchmark::State& state, uint32_t bits) {
  NearestBitmaps b(state, bits);
  std::vector<uint32_t> columns(b.target.width);
  std::vector<std::byte> row(b.target.bytes_per_line);
  for (auto _ : state) {
    ResizeNearest(
        {.source = b.source,
         .destination = b.target,
         .fetch = [&](uint32_t y) { return b.from.data() + size_t{y} * b.source.bytes_per_line; },
         .store = [](uint32_t, Bytes) { return 1; },
         .row = row,
         .progress = {nullptr, nullptr, b.target.height}},
        [&](uint32_t y) { return b.to.data() + size_t{y} * b.target.bytes_per_line; }, columns);
    benchmark::ClobberMemory();
  }
}

void LibyuvNearest32(benchmark::State& state) {
  NearestBitmaps b(state, 32);
  for (auto _ : state) {
    libyuv::ARGBScale(As<uint8_t>(b.from), static_cast<int>(b.source.bytes_per_line),
                      static_cast<int>(b.source.width), static_cast<int>(b.source.height),
                      As<uint8_t>(b.to), static_cast<int>(b.target.bytes_per_line),
                      static_cast<int>(b.target.width), static_cast<int>(b.target.height),
                      libyuv::kFilterNone);
    benchmark::ClobberMemory();
  }
}

void PixmanNearest24(benchmark::State& state) {
  NearestBitmaps b(state, 24);
  const auto image = [](const Geometry& size, std::vector<std::byte>& rows) {
    return pixman_image_create_bits(PIXMAN_r8g8b8, static_cast<int>(size.width),
                                    static_cast<int>(size.height), As<uint32_t>(rows),
                                    static_cast<int>(size.bytes_per_line));
  };
  pixman_image_t* from = image(b.source, b.from);
  pixman_image_t* to = image(b.target, b.to);
  pixman_transform_t scale;
  pixman_transform_init_scale(&scale, pixman_double_to_fixed(1.0 * b.source.width / b.target.width),
                              pixman_double_to_fixed(1.0 * b.source.height / b.target.height));
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

constexpr uint32_t kWidth = 1920;
constexpr uint32_t kHeight = 1080;
constexpr size_t kPixels = size_t{kWidth} * kHeight;

/// Converts noise over and over into rows of 24 bits.
void Convert(benchmark::State& state, DibLayout layout, size_t source_size) {
  DibDescription dib{};
  dib.layout = layout;
  dib.width = kWidth;
  dib.height = kHeight;
  dib.source_bits = 24;
  const std::vector<std::byte> bits = Noise(source_size);
  const Geometry size = *MakeGeometry(kWidth, kHeight, 24);
  std::vector<std::byte> rows(size.data_size);
  std::vector<std::byte> scratch(size.bytes_per_line);
  for (auto _ : state) {
    ConvertDibRows(dib, bits, scratch, [&](uint32_t y, Bytes data) {
      std::memcpy(rows.data() + y * data.size(), data.data(), data.size());
      return 1;
    });
    benchmark::ClobberMemory();
  }
}

void Rows24(benchmark::State& state) { Convert(state, DibLayout::kRows, kPixels * 3); }

void Memcpy24(benchmark::State& state) {
  const std::vector<std::byte> bits = Noise(kPixels * 3);
  std::vector<std::byte> rows(bits.size());
  for (auto _ : state) {
    std::memcpy(rows.data(), bits.data(), bits.size());
    benchmark::ClobberMemory();
  }
}

void Sizes(benchmark::internal::Benchmark* b) {
  b->Args({2000, 1333})->Args({1234, 777})->Args({4000, 3000})->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(Nearest, 32, 32u)->Apply(Sizes);
BENCHMARK(LibyuvNearest32)->Apply(Sizes);
BENCHMARK_CAPTURE(Nearest, 24, 24u)->Apply(Sizes);
BENCHMARK(PixmanNearest24)->Apply(Sizes);
BENCHMARK(Rows24)->Unit(benchmark::kMicrosecond);
BENCHMARK(Memcpy24)->Unit(benchmark::kMicrosecond);

const bench::Pair kPairs[] = {
    {"nearest neighbour, 32 bit", "Nearest/32", "LibyuvNearest32", "libyuv", 1.05},
    {"nearest neighbour, 24 bit", "Nearest/24", "PixmanNearest24", "pixman", 5},
    {"rows of 24 bits into a bitmap", "Rows24", "Memcpy24", "memcpy", 0.9},
};

}  // namespace
}  // namespace quillo::imaging

int main(int argc, char** argv) { quillo::bench::RunPairs(argc, argv, quillo::imaging::kPairs); }
