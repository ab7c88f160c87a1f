#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <numeric>
#include <string>
#include <vector>

#include "imaging/noise.h"
#include "imaging/pixels/orientation.h"
#include "imaging/scaling/area.h"
#include "imaging/scaling/nearest.h"
#include "imaging/scaling/resample.h"
#include "support/case_table.h"
#include "support/digest.h"
#include "support/line.h"

namespace quillo::imaging {
namespace {

/// A bitmap in plain memory.
struct Image {
  Image(uint32_t width, uint32_t height, uint32_t bits)
      : size(*MakeGeometry(width, height, bits)), rows(size.data_size) {}
  std::byte* Row(uint32_t y) { return rows.data() + size_t{y} * size.bytes_per_line; }

  Geometry size;
  std::vector<std::byte> rows;
};

/// One scaling of a picture of noise by a method of the table.
struct NoisyPicture {
  NoisyPicture(uint32_t bits, uint32_t width, uint32_t height, const Geometry& to)
      : source(width, height, bits),
        target(to.width, to.height, to.bits_per_pixel),
        row(target.size.bytes_per_line) {
    source.rows = Noise(source.rows.size());
  }

  Scaling AsScaling() {
    return {source.size, target.size, fetch, store, row, {nullptr, nullptr, target.size.height}};
  }

  int Nearest(bool in_place) {
    std::vector<uint32_t> columns(target.size.width);
    const auto place = [&](uint32_t y) { return in_place ? target.Row(y) : nullptr; };
    return ResizeNearest(AsScaling(), place, columns);
  }

  int Area(AreaRule rule) {
    std::vector<uint64_t> sums(target.size.width);
    return ScaleByArea(AsScaling(), rule, sums);
  }

  int Filter(CubicFilter filter) {
    const uint32_t bits = source.size.bits_per_pixel;
    std::vector<PaletteEntry> palette(PaletteSize(bits));
    if (!palette.empty()) FillDefaultPalette(palette);
    const uint32_t order = bits == 12 ? kOrderGrey : bits > 8 ? kOrderColour : kOrderPalette;
    std::vector<double> work(ResampleWorkSize(source.size, target.size) / sizeof(double) + 1);
    return Resample(AsScaling(), filter, {bits, order, palette},
                    std::as_writable_bytes(std::span(work)));
  }

  /// Turns it upright in bands of two rows.
  int Turn(uint32_t view) {
    for (uint32_t top = 0; top < target.size.height; top += 2) {
      const Geometry band = *MakeGeometry(target.size.width, std::min(2u, target.size.height - top),
                                          target.size.bits_per_pixel);
      const int result = TurnRows(view, source.size, fetch, top, band, target.Row(top));
      if (result != kSuccess) return result;
    }
    return kSuccess;
  }

  Image source, target;
  std::vector<std::byte> row;
  const std::function<const std::byte*(uint32_t)> fetch = [this](uint32_t y) {
    return source.Row(y);
  };
  const std::function<int(uint32_t, Bytes)> store = [this](uint32_t y, Bytes data) {
    std::ranges::copy(data, target.Row(y));
    return kSuccess;
  };
};

TEST(Scaling, NoiseOfEveryDepth_BecomesKnownRows) {
  const std::map<std::string, AreaRule> rules = {{"majority", AreaRule::kMajority},
                                                 {"any-set", AreaRule::kAnySet},
                                                 {"all-set", AreaRule::kAllSet},
                                                 {"levels", AreaRule::kLevels}};
  const std::map<std::string, CubicFilter> filters = {{"mitchell", CubicFilter::kMitchell},
                                                      {"catmull-rom", CubicFilter::kCatmullRom}};
  test::CheckCases("imaging/scalings.txt", [&](const auto& fields) {
    std::string method;
    uint32_t bits = 0, width = 0, height = 0, new_width = 0, new_height = 0;
    test::Scan(fields[0], method, bits, width, height, new_width, new_height);
    const uint32_t new_bits = method == "levels" ? 8 : bits;
    NoisyPicture picture(bits, width, height, *MakeGeometry(new_width, new_height, new_bits));
    const int result = rules.contains(method)         ? picture.Area(rules.at(method))
                       : filters.contains(method)     ? picture.Filter(filters.at(method))
                       : method.starts_with("turned") ? picture.Turn(method.back() - '0')
                                                      : picture.Nearest(method == "in-place");
    EXPECT_EQ(result, kSuccess);
    return test::Line("0x", std::hex, test::Digest(picture.target.rows));
  });
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

}  // namespace
}  // namespace quillo::imaging
