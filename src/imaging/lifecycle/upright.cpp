#include "imaging/lifecycle/upright.h"

#include <algorithm>

#include "base/system_owners.h"
#include "imaging/lifecycle/create.h"
#include "imaging/pixels/orientation.h"
#include "imaging/storage/rows.h"
#include "imaging/storage/storage.h"

namespace quillo::imaging {
namespace {

constexpr uint32_t kBandSize = 4 << 20;  // bytes of rows that are turned at a time

}  // namespace

int MakeUpright(const BitmapHandle& source, BitmapHandle* upright) {
  const bool swaps = Orientation::SwapsAxes(source.view_perspective);
  int result = CreateLike(source, swaps ? source.height : source.width,
                          swaps ? source.width : source.height, upright);
  if (result != kSuccess) return result;
  upright->view_perspective = kBottomRowFirst;

  Geometry band = GeometryOf(*upright);
  band.height = std::clamp(kBandSize / band.bytes_per_line, 1u, upright->height);
  const HeapBlock band_rows(size_t{band.height} * band.bytes_per_line);
  const HeapBlock scratch(source.bytes_per_line);
  if (!band_rows || !scratch) return kOutOfMemory;
  const auto fetch = [&](uint32_t row) {
    return BorrowRow(source, row, {scratch.As<std::byte>(), source.bytes_per_line});
  };
  for (uint32_t top = 0; top < upright->height; top += band.height) {
    band.height = std::min(band.height, upright->height - top);
    auto* rows = band_rows.As<std::byte>();
    result = TurnRows(source.view_perspective, GeometryOf(source), fetch, top, band, rows);
    for (uint32_t i = 0; i < band.height && result == kSuccess; ++i) {
      result = StoreRow(*upright, upright->height - 1 - (top + i),
                        {rows + size_t{i} * band.bytes_per_line, band.bytes_per_line});
    }
    if (result != kSuccess) return result;
  }
  return kSuccess;
}

int TurnUpright(BitmapHandle& record) {
  BitmapScope upright;
  const LockScope lock(record);
  if (lock.Result() != kSuccess) return lock.Result();
  const int result = MakeUpright(record, upright.Get());
  if (result == kSuccess) ExchangePixels(record, *upright.Get());
  return result;
}

}  // namespace quillo::imaging
