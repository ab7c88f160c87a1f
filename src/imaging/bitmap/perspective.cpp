#include "imaging/bitmap/perspective.h"

#include <algorithm>

#include "base/system_owners.h"
#include "imaging/bitmap/rows.h"
#include "imaging/bitmap/storage.h"
#include "imaging/pixels/orientation.h"
#include "imaging/pixels/pixel_bits.h"

namespace quillo::imaging {
namespace {

constexpr uint32_t kBandSize = 4 << 20;  // bytes of rows that are turned at a time

void CopyPixel(uint32_t bits, const std::byte* source, uint32_t from, std::byte* row, uint32_t to) {
  if (bits <= 8 || bits == 12) {
    StorePixelBits(row, bits, to, LoadPixelBits(source, bits, from));
  } else {
    const size_t bytes = bits / 8;
    std::copy_n(source + from * bytes, bytes, row + to * bytes);
  }
}

/// Turns all source pixels that are seen in `rows` rows from `top` on into `band`.
int FillBand(const BitmapHandle& source, const Orientation& orientation, uint32_t top,
             uint32_t rows, uint32_t bytes_per_line, MutableBytes scratch, std::byte* band) {
  for (uint32_t row = 0; row < source.height; ++row) {
    const auto in_band = [&](uint32_t column) {
      return orientation.Seen(column, row).y - top < rows;
    };
    const bool swaps = Orientation::SwapsAxes(source.view_perspective);
    if (!swaps && !in_band(0)) continue;
    const std::byte* from = BorrowRow(source, row, scratch);
    if (from == nullptr) return kFileError;
    for (uint32_t column = 0; column < source.width; ++column) {
      const Orientation::Point seen = orientation.Seen(column, row);
      if (seen.y - top >= rows) continue;
      CopyPixel(source.bits_per_pixel, from, column, band + size_t{seen.y - top} * bytes_per_line,
                seen.x);
    }
  }
  return kSuccess;
}

}  // namespace

int MakeUpright(const BitmapHandle& source, BitmapHandle* upright) {
  const Orientation orientation(source.view_perspective, source.width, source.height);
  const bool swaps = Orientation::SwapsAxes(source.view_perspective);
  int result = AllocateLike(source, swaps ? source.height : source.width,
                            swaps ? source.width : source.height, upright);
  if (result != kSuccess) return result;
  upright->view_perspective = kBottomRowFirst;

  const uint32_t line = upright->bytes_per_line;
  const uint32_t band_rows = std::clamp(kBandSize / line, 1u, upright->height);
  const HeapBlock band(size_t{band_rows} * line);
  const HeapBlock scratch(source.bytes_per_line);
  if (!band || !scratch) return kOutOfMemory;
  for (uint32_t top = 0; top < upright->height; top += band_rows) {
    const uint32_t rows = std::min(band_rows, upright->height - top);
    result = FillBand(source, orientation, top, rows, line,
                      {scratch.As<std::byte>(), source.bytes_per_line}, band.As<std::byte>());
    for (uint32_t i = 0; i < rows && result == kSuccess; ++i) {
      result = StoreRow(*upright, upright->height - 1 - (top + i),
                        {band.As<std::byte>() + size_t{i} * line, line});
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
