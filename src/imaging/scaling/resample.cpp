#include "imaging/scaling/resample.h"

#include <algorithm>
#include <cmath>

namespace quillo::imaging {
namespace {

constexpr double kRadius = 2.0;          // of the cubic filters
constexpr uint32_t kMaxCachedRows = 64;  // a stronger reduction fetches source rows again

using Pixel = float[4];

/// The source positions that one destination position takes; they may lie outside the source.
struct Taps {
  int64_t first;
  uint32_t count;
};

/// How destination positions in one direction derive from source positions.
class Direction {
 public:
  Direction(CubicFilter filter, uint32_t source, uint32_t destination)
      : filter_(filter),
        source_(source),
        ratio_(static_cast<double>(source) / destination),
        widening_(std::max(ratio_, 1.0)) {}

  /// The maximum of source positions that one destination position takes.
  [[nodiscard]] static uint32_t MaxTaps(uint32_t source, uint32_t destination) {
    const double ratio = static_cast<double>(source) / destination;
    return static_cast<uint32_t>(std::ceil(2 * kRadius * std::max(ratio, 1.0))) + 1;
  }

  /// Fills `weights` (MaxTaps), which add up to 1.
  Taps Weights(uint32_t position, float* weights) const {
    const double centre = (position + 0.5) * ratio_ - 0.5;
    const auto first = static_cast<int64_t>(std::floor(centre - kRadius * widening_)) + 1;
    const auto last = static_cast<int64_t>(std::floor(centre + kRadius * widening_));
    const auto count = static_cast<uint32_t>(last - first + 1);
    double sum = 0;
    for (uint32_t i = 0; i < count; ++i) {
      const double distance = (static_cast<double>(first + i) - centre) / widening_;
      const double weight = CubicWeight(filter_, distance);
      weights[i] = static_cast<float>(weight);
      sum += weight;
    }
    for (uint32_t i = 0; i < count; ++i) weights[i] = static_cast<float>(weights[i] / sum);
    return {first, count};
  }

  /// The source position that replaces one outside.
  [[nodiscard]] uint32_t Inside(int64_t position) const {
    return static_cast<uint32_t>(std::clamp<int64_t>(position, 0, int64_t{source_} - 1));
  }

 private:
  CubicFilter filter_;
  uint32_t source_;
  double ratio_;
  double widening_;
};

void AddScaled(const Pixel& pixel, float weight, Pixel& sum) {
  for (size_t c = 0; c < 4; ++c) sum[c] += pixel[c] * weight;
}

uint16_t ToChannel(float value) {
  return static_cast<uint16_t>(std::lround(std::clamp(value, 0.0f, 65535.0f)));
}

/// The work space.
struct Work {
  Pixel* cached_rows;  // rows scaled along x, by source row modulo their number
  Pixel* sum;          // one destination row
  Colour16* colours;   // one source or destination row
  int64_t* cached;     // source row of each cached row, or -1
  Taps* x_taps;        // of each destination column
  float* x_weights;    // max_x_taps of each destination column
  float* y_weights;    // of one destination row
  uint32_t row_count;  // cached rows
  uint32_t max_x_taps;
};

/// Lays the work space out from `base` and returns its size.
size_t LayOut(const Geometry& source, const Geometry& destination, std::byte* base, Work* work) {
  const uint32_t max_y_taps = Direction::MaxTaps(source.height, destination.height);
  work->max_x_taps = Direction::MaxTaps(source.width, destination.width);
  work->row_count = std::min(max_y_taps, kMaxCachedRows);
  size_t size = 0;
  const auto take = [&]<typename T>(T** block, size_t count) {
    *block = reinterpret_cast<T*>(base + size);
    size += (count * sizeof(T) + 15) / 16 * 16;
  };
  take(&work->cached_rows, size_t{work->row_count} * destination.width);
  take(&work->sum, destination.width);
  take(&work->colours, std::max(source.width, destination.width));
  take(&work->cached, work->row_count);
  take(&work->x_taps, destination.width);
  take(&work->x_weights, size_t{destination.width} * work->max_x_taps);
  take(&work->y_weights, max_y_taps);
  return size;
}

/// Scales rows along x, and keeps the last ones.
class RowScaler {
 public:
  RowScaler(CubicFilter filter, const RowFormat& format, const Geometry& source, uint32_t width,
            const Work& work, RowFetch fetch)
      : direction_(filter, source.width, width),
        format_(format),
        source_width_(source.width),
        width_(width),
        work_(work),
        fetch_(fetch) {
    std::fill_n(work.cached, work.row_count, -1);
    for (uint32_t x = 0; x < width; ++x) work.x_taps[x] = direction_.Weights(x, WeightsOf(x));
  }

  /// Source row `y`, as wide as the destination; null when it cannot be fetched.
  const Pixel* Row(uint32_t y) {
    const uint32_t slot = y % work_.row_count;
    Pixel* scaled = work_.cached_rows + size_t{slot} * width_;
    if (work_.cached[slot] == y) return scaled;
    const std::byte* pixels = fetch_(y);
    if (pixels == nullptr) return nullptr;
    DecodeRow(format_, pixels, 0, {work_.colours, source_width_});
    for (uint32_t x = 0; x < width_; ++x) ScalePixel(x, scaled[x]);
    work_.cached[slot] = y;
    return scaled;
  }

 private:
  float* WeightsOf(uint32_t x) const { return work_.x_weights + size_t{x} * work_.max_x_taps; }

  void ScalePixel(uint32_t x, Pixel& sum) const {
    const Taps& taps = work_.x_taps[x];
    const float* weights = WeightsOf(x);
    std::fill_n(sum, 4, 0.0f);
    for (uint32_t i = 0; i < taps.count; ++i) {
      const Colour16& colour = work_.colours[direction_.Inside(taps.first + i)];
      const Pixel pixel = {static_cast<float>(colour.blue), static_cast<float>(colour.green),
                           static_cast<float>(colour.red), static_cast<float>(colour.alpha)};
      AddScaled(pixel, weights[i], sum);
    }
  }

  Direction direction_;
  RowFormat format_;
  uint32_t source_width_;
  uint32_t width_;
  Work work_;
  RowFetch fetch_;
};

}  // namespace

double CubicWeight(CubicFilter filter, double distance) {
  const double b = filter == CubicFilter::kMitchell ? 1.0 / 3 : 0.0;
  const double c = filter == CubicFilter::kMitchell ? 1.0 / 3 : 0.5;
  const double x = std::abs(distance);
  if (x < 1) {
    return ((12 - 9 * b - 6 * c) * x * x * x + (-18 + 12 * b + 6 * c) * x * x + (6 - 2 * b)) / 6;
  }
  if (x < 2) {
    return ((-b - 6 * c) * x * x * x + (6 * b + 30 * c) * x * x + (-12 * b - 48 * c) * x +
            (8 * b + 24 * c)) /
           6;
  }
  return 0;
}

size_t ResampleWorkSize(const Geometry& source, const Geometry& destination) {
  Work work;
  return LayOut(source, destination, nullptr, &work);
}

int Resample(Scaling scaling, CubicFilter filter, const RowFormat& format,
             MutableBytes work_space) {
  const Geometry& source = scaling.source;
  const Geometry& destination = scaling.destination;
  Work work;
  LayOut(source, destination, work_space.data(), &work);
  const uint32_t width = destination.width;
  const Direction direction(filter, source.height, destination.height);
  RowScaler rows(filter, format, source, width, work, scaling.fetch);
  int result = scaling.progress.Start();
  for (uint32_t y = 0; y < destination.height && result == kSuccess; ++y) {
    const Taps taps = direction.Weights(y, work.y_weights);
    std::fill_n(&work.sum[0][0], size_t{width} * 4, 0.0f);
    for (uint32_t i = 0; i < taps.count; ++i) {
      const Pixel* scaled = rows.Row(direction.Inside(taps.first + i));
      if (scaled == nullptr) return kFileError;
      for (uint32_t x = 0; x < width; ++x) AddScaled(scaled[x], work.y_weights[i], work.sum[x]);
    }
    for (uint32_t x = 0; x < width; ++x) {
      const Pixel& sum = work.sum[x];
      work.colours[x] = {ToChannel(sum[0]), ToChannel(sum[1]), ToChannel(sum[2]),
                         ToChannel(sum[3])};
    }
    EncodeRow(format, {work.colours, width}, scaling.row.data());
    result = scaling.store(y, scaling.row);
    if (result == kSuccess) result = scaling.progress.RowDone();
  }
  return result;
}

}  // namespace quillo::imaging
