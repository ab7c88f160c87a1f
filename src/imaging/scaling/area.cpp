#include "imaging/scaling/area.h"

#include <algorithm>

#include "imaging/pixels/pixel_bits.h"

namespace quillo::imaging {
namespace {

/// Calls `visit(i, j, overlap)` for every source interval i and destination interval j that share
/// some length. Lengths are in units of which a source interval has `destination` and a destination
/// interval `source`, so that both sides measure the same. Only destination intervals from `first`
/// to `last` - 1 are visited.
template <typename Visit>
bool VisitOverlaps(uint64_t source, uint64_t destination, uint64_t first, uint64_t last,
                   Visit visit) {
  uint64_t at = first * source;
  uint64_t i = at / destination;
  uint64_t j = first;
  while (j < last) {
    const uint64_t source_end = (i + 1) * destination;
    const uint64_t destination_end = (j + 1) * source;
    const uint64_t end = std::min(source_end, destination_end);
    if (!visit(static_cast<uint32_t>(i), static_cast<uint32_t>(j), end - at)) return false;
    at = end;
    if (end == source_end) ++i;
    if (end == destination_end) ++j;
  }
  return true;
}

void WriteRow(AreaRule rule, std::span<const uint64_t> sums, uint64_t whole, std::byte* row) {
  for (uint32_t x = 0; x < sums.size(); ++x) {
    const uint64_t sum = sums[x];
    switch (rule) {
      case AreaRule::kMajority:
        StorePixelBits(row, 1, x, sum > whole - sum);
        break;
      case AreaRule::kAnySet:
        StorePixelBits(row, 1, x, sum != 0);
        break;
      case AreaRule::kAllSet:
        StorePixelBits(row, 1, x, sum == whole);
        break;
      case AreaRule::kLevels: {
        const double share = static_cast<double>(sum) / static_cast<double>(whole);
        row[x] = static_cast<std::byte>(share * 255 + 0.5);
        break;
      }
    }
  }
}

}  // namespace

int ScaleByArea(Scaling scaling, AreaRule rule, std::span<uint64_t> sums) {
  const Geometry& source = scaling.source;
  const Geometry& destination = scaling.destination;
  const uint64_t whole = uint64_t{source.width} * source.height;
  int result = scaling.progress.Start();
  for (uint32_t y = 0; y < destination.height && result == kSuccess; ++y) {
    std::ranges::fill(sums, 0);
    const bool fetched = VisitOverlaps(
        source.height, destination.height, y, uint64_t{y} + 1,
        [&](uint32_t source_row, uint32_t, uint64_t height) {
          const std::byte* pixels = scaling.fetch(source_row);
          if (pixels == nullptr) return false;
          return VisitOverlaps(source.width, destination.width, 0, destination.width,
                               [&](uint32_t from, uint32_t to, uint64_t width) {
                                 sums[to] += LoadPixelBits(pixels, 1, from) * width * height;
                                 return true;
                               });
        });
    if (!fetched) return kFileError;
    WriteRow(rule, sums, whole, scaling.row.data());
    result = scaling.store(y, scaling.row);
    if (result == kSuccess) result = scaling.progress.RowDone();
  }
  return result;
}

}  // namespace quillo::imaging
