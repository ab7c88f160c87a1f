#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numeric>
#include <vector>

#include "imaging/noise.h"
#include "imaging/pixels/orientation.h"
#include "imaging/pixels/pixel_bits.h"
#include "imaging/scaling/area.h"
#include "imaging/scaling/nearest.h"
#include "imaging/scaling/resample.h"

namespace quillo::imaging {
namespace {

constexpr uint32_t kDepths[] = {1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 48, 64};

/// A bitmap in plain memory.
struct Image {
  Image(uint32_t width, uint32_t height, uint32_t bits)
      : size(*MakeGeometry(width, height, bits)), rows(size.data_size) {}

  [[nodiscard]] const std::byte* Row(uint32_t y) const {
    return rows.data() + size_t{y} * size.bytes_per_line;
  }
  std::byte* Row(uint32_t y) { return rows.data() + size_t{y} * size.bytes_per_line; }

  /// The bits of a pixel as a number.
  [[nodiscard]] uint64_t At(uint32_t x, uint32_t y) const {
    if (size.bits_per_pixel <= 8 || size.bits_per_pixel == 12) {
      return LoadPixelBits(Row(y), size.bits_per_pixel, x);
    }
    uint64_t pixel = 0;
    const size_t bytes = size.bits_per_pixel / 8;
    std::memcpy(&pixel, Row(y) + x * bytes, bytes);
    return pixel;
  }

  /// For kernels that read their source row by row, and store rows.
  [[nodiscard]] auto Reader() const {
    return [this](uint32_t y) { return Row(y); };
  }
  auto Writer() {
    return [this](uint32_t y, Bytes data) {
      std::ranges::copy(data, Row(y));
      return kSuccess;
    };
  }

  Geometry size;
  std::vector<std::byte> rows;
};

Image NoiseImage(uint32_t width, uint32_t height, uint32_t bits) {
  Image image(width, height, bits);
  image.rows = Noise(image.rows.size());
  return image;
}

Progress NoProgress(uint32_t rows) { return Progress(nullptr, nullptr, rows); }

/// Scales with rows written in place, or stored.
Image Nearest(const Image& source, uint32_t width, uint32_t height, bool in_place) {
  Image target(width, height, source.size.bits_per_pixel);
  std::vector<uint32_t> columns(width);
  std::vector<std::byte> row(target.size.bytes_per_line);
  EXPECT_EQ(ResizeNearest(
                source.size, target.size, columns, row, source.Reader(),
                [&](uint32_t y) { return in_place ? target.Row(y) : nullptr; }, target.Writer(),
                NoProgress(height)),
            kSuccess);
  return target;
}

TEST(Nearest, EveryDepthAndSize_TakesPixelsWhole) {
  const uint32_t sizes[][4] = {{13, 9, 29, 21}, {29, 21, 13, 9}, {17, 5, 17, 11}, {40, 3, 23, 3},
                               {1, 1, 9, 4},    {33, 7, 1, 1},   {10, 4, 4, 10}};
  for (const uint32_t bits : kDepths) {
    for (const auto& [w, h, new_w, new_h] : sizes) {
      const Image source = NoiseImage(w, h, bits);
      const Image stored = Nearest(source, new_w, new_h, false);
      for (uint32_t y = 0; y < new_h; ++y) {
        for (uint32_t x = 0; x < new_w; ++x) {
          ASSERT_EQ(stored.At(x, y), source.At(uint32_t{x * w / new_w}, uint32_t{y * h / new_h}))
              << bits << " bits, " << w << 'x' << h << " to " << new_w << 'x' << new_h << " at "
              << x << ',' << y;
        }
      }
      EXPECT_EQ(Nearest(source, new_w, new_h, true).rows, stored.rows) << bits;
    }
  }
}

TEST(TurnRows, AnyBand_HoldsThePixelsSeenThere) {
  const Image source = NoiseImage(5, 4, 8);
  for (uint32_t view = 1; view <= 8; ++view) {
    const Orientation orientation(view, 5, 4);
    for (uint32_t top = 0; top < 4; top += 2) {
      Image band(Orientation::SwapsAxes(view) ? 4 : 5, 2, 8);
      EXPECT_EQ(TurnRows(view, source.size, source.Reader(), top, band.size, band.rows.data()),
                kSuccess);
      for (uint32_t i = 0; i < 20; ++i) {
        const auto [x, y] = orientation.Seen(i % 5, i / 5);
        if (y - top >= 2) continue;
        EXPECT_EQ(band.At(x, y - top), source.At(i % 5, i / 5)) << view;
      }
    }
  }
}

int Record(int percent, void* user) {
  static_cast<std::vector<int>*>(user)->push_back(percent);
  return kSuccess;
}

TEST(Progress, Percentages_ComeInWholeStepsAndRemainders) {
  std::vector<int> all(101);  // rows that move nothing are not reported
  std::iota(all.begin(), all.end(), 0);
  const std::pair<uint32_t, std::vector<int>> cases[] = {
      {1, {0, 100}}, {3, {0, 33, 66, 100}}, {7, {0, 14, 28, 42, 57, 71, 85, 100}}, {1000, all}};
  for (const auto& [rows, percents] : cases) {
    std::vector<int> calls;
    Progress progress(Record, &calls, rows);
    EXPECT_EQ(progress.Start(), kSuccess);
    for (uint32_t i = 0; i < rows; ++i) EXPECT_EQ(progress.RowDone(), kSuccess);
    EXPECT_EQ(calls, percents) << rows;
  }
}

TEST(ScaleByArea, EveryRule_EqualsTheNaiveShare) {
  const uint32_t sizes[][4] = {{20, 14, 7, 5}, {7, 5, 20, 14}, {9, 9, 9, 4}, {5, 30, 11, 3}};
  for (const auto& [w, h, new_w, new_h] : sizes) {
    const Image source = NoiseImage(w, h, 1);
    for (const AreaRule rule :
         {AreaRule::kMajority, AreaRule::kAnySet, AreaRule::kAllSet, AreaRule::kLevels}) {
      Image target(new_w, new_h, rule == AreaRule::kLevels ? 8 : 1);
      std::vector<uint64_t> sums(new_w);
      std::vector<std::byte> row(target.size.bytes_per_line);
      ScaleByArea(rule, source.size, target.size, sums, row, source.Reader(), target.Writer(),
                  NoProgress(new_h));
      for (uint32_t y = 0; y < new_h; ++y) {
        for (uint32_t x = 0; x < new_w; ++x) {
          // Both bitmaps drawn on a grid that is fine enough for either.
          uint64_t set = 0;
          for (uint32_t v = y * h; v < (y + 1) * h; ++v) {
            for (uint32_t u = x * w; u < (x + 1) * w; ++u) set += source.At(u / new_w, v / new_h);
          }
          const uint64_t whole = uint64_t{w} * h;
          const uint64_t expected = rule == AreaRule::kMajority ? set * 2 > whole
                                    : rule == AreaRule::kAnySet ? set > 0
                                    : rule == AreaRule::kAllSet ? set == whole
                                                                : (set * 510 + whole) / (2 * whole);
          ASSERT_EQ(target.At(x, y), expected) << w << 'x' << h << " rule " << int(rule);
        }
      }
    }
  }
}

/// The filtered value of one channel byte, straight from the definition.
double NaiveFilter(CubicFilter filter, const Image& source, const Geometry& target, uint32_t x,
                   uint32_t y, size_t channel) {
  const auto weights = [filter](uint32_t from, uint32_t to, uint32_t position) {
    const double ratio = static_cast<double>(from) / to;
    const double wide = std::max(ratio, 1.0);
    const double centre = (position + 0.5) * ratio - 0.5;
    std::vector<std::pair<uint32_t, double>> list;
    for (int i = -200; i < static_cast<int>(from) + 200; ++i) {
      const double weight = CubicWeight(filter, (i - centre) / wide);
      if (weight != 0) list.emplace_back(std::clamp<int>(i, 0, static_cast<int>(from) - 1), weight);
    }
    return list;
  };
  double sum = 0;
  double total = 0;
  for (const auto& [v, wy] : weights(source.size.height, target.height, y)) {
    for (const auto& [u, wx] : weights(source.size.width, target.width, x)) {
      sum += wx * wy * static_cast<double>(source.At(u, v) >> (8 * channel) & 0xFF);
      total += wx * wy;
    }
  }
  return std::clamp(sum / total, 0.0, 255.0);
}

Image Resampled(CubicFilter filter, const RowFormat& format, const Image& source, uint32_t width,
                uint32_t height) {
  Image target(width, height, source.size.bits_per_pixel);
  std::vector<double> work(ResampleWorkSize(source.size, target.size) / sizeof(double) + 1);
  std::vector<std::byte> row(target.size.bytes_per_line);
  EXPECT_EQ(
      Resample(filter, format, source.size, target.size, std::as_writable_bytes(std::span(work)),
               row, source.Reader(), target.Writer(), NoProgress(height)),
      kSuccess);
  return target;
}

TEST(Resample, BothFilters_EqualTheDefinition) {
  // The last has more rows to a destination row than are kept.
  const uint32_t sizes[][4] = {{12, 9, 5, 4}, {5, 4, 12, 9}, {6, 40, 9, 7}, {3, 150, 2, 4}};
  for (const CubicFilter filter : {CubicFilter::kMitchell, CubicFilter::kCatmullRom}) {
    for (const auto& [w, h, new_w, new_h] : sizes) {
      const Image source = NoiseImage(w, h, 32);
      const Image target = Resampled(filter, {32, kOrderColour, {}}, source, new_w, new_h);
      for (uint32_t y = 0; y < new_h; ++y) {
        for (uint32_t x = 0; x < new_w; ++x) {
          for (size_t c = 0; c < 4; ++c) {
            ASSERT_NEAR(static_cast<double>(target.At(x, y) >> (8 * c) & 0xFF),
                        NaiveFilter(filter, source, target.size, x, y, c), 0.51)
                << w << 'x' << h << " to " << new_w << 'x' << new_h;
          }
        }
      }
    }
  }
}

TEST(Resample, EveryFormat_KeepsAnEvenSurface) {
  for (const uint32_t bits : kDepths) {
    std::vector<PaletteEntry> palette(PaletteSize(bits));
    if (!palette.empty()) FillDefaultPalette(palette);
    const uint32_t order = bits == 12 ? kOrderGrey : bits > 8 ? kOrderColour : kOrderPalette;
    const RowFormat format{bits, order, palette};
    // One pixel of noise, enlarged without filtering; the spare bit of 16 has no meaning.
    Image pixel = NoiseImage(1, 1, bits);
    if (bits == 16) pixel.rows[1] &= std::byte{0x7F};
    const Image target =
        Resampled(CubicFilter::kCatmullRom, format, Nearest(pixel, 6, 6, false), 9, 4);
    Colour16 colour[1], surface[9];
    DecodeRow(format, pixel.Row(0), 0, colour);
    for (uint32_t y = 0; y < 4; ++y) {
      DecodeRow(format, target.Row(y), 0, surface);
      for (const Colour16& at : surface) EXPECT_EQ(ToEntry(at), ToEntry(colour[0])) << bits;
    }
  }
}

}  // namespace
}  // namespace quillo::imaging
