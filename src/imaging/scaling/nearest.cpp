#include "imaging/scaling/nearest.h"

#include <array>
#include <cstring>

#include "imaging/pixels/avx2.h"
#include "imaging/pixels/pixel_bits.h"
#include "imaging/pixels/result.h"

namespace quillo::imaging {
namespace {

template <size_t kBytes>
void CopyPixels(const std::byte* source, std::span<const uint32_t> columns, std::byte* row) {
  for (const uint32_t column : columns) {
    std::memcpy(row, source + column * kBytes, kBytes);
    row += kBytes;
  }
}

void CopyBits(uint32_t bits, const std::byte* source, std::span<const uint32_t> columns,
              std::byte* row) {
  std::memset(row, 0, (columns.size() * bits + 7) / 8);
  for (uint32_t x = 0; x < columns.size(); ++x) {
    StorePixelBits(row, bits, x, LoadPixelBits(source, bits, columns[x]));
  }
}

void ScaleRowPlain(uint32_t bits, const std::byte* source, std::span<const uint32_t> columns,
                   std::byte* row) {
  switch (bits) {
    case 8:
      return CopyPixels<1>(source, columns, row);
    case 16:
      return CopyPixels<2>(source, columns, row);
    case 24:
      return CopyPixels<3>(source, columns, row);
    case 32:
      return CopyPixels<4>(source, columns, row);
    case 48:
      return CopyPixels<6>(source, columns, row);
    case 64:
      return CopyPixels<8>(source, columns, row);
    default:
      if (IsSupportedDepth(bits)) CopyBits(bits, source, columns, row);
  }
}

/// Copies the pixels of `bits` at `columns` of `source` into `row`. Below 8 bits the bytes of `row`
/// that hold pixels are zeroed first.
void ScaleRow(uint32_t bits, const std::byte* source, std::span<const uint32_t> columns,
              std::byte* row) {
  const size_t done = bits == 32 && HasAvx2() ? GatherPixelsAvx2(source, columns, row) : 0;
  ScaleRowPlain(bits, source, columns.subspan(done), row + done * sizeof(uint32_t));
}

}  // namespace

void FillColumns(uint32_t source_width, std::span<uint32_t> columns) {
  NearestSteps steps(source_width, static_cast<uint32_t>(columns.size()));
  for (uint32_t& column : columns) {
    column = steps.Position();
    steps.Advance();
  }
}

int ResizeNearest(Scaling scaling, RowPlace place, std::span<uint32_t> columns) {
  const Geometry& source = scaling.source;
  const MutableBytes row = scaling.row;
  FillColumns(source.width, columns);
  NearestSteps steps(source.height, scaling.destination.height);
  const std::byte* scaled = nullptr;  // the last row that was scaled, where it lies
  int64_t fetched = -1;
  int result = scaling.progress.Start();
  for (uint32_t y = 0; y < scaling.destination.height && result == kSuccess; ++y) {
    std::byte* target = place(y);
    if (steps.Position() > fetched) {
      fetched = steps.Position();
      const std::byte* from = scaling.fetch(steps.Position());
      if (from == nullptr) return kFileError;
      std::byte* to = target != nullptr ? target : row.data();
      ScaleRow(source.bits_per_pixel, from, columns, to);
      scaled = to;
    } else if (target != nullptr) {
      std::memcpy(target, scaled, row.size());
    }
    steps.Advance();
    if (target == nullptr) result = scaling.store(y, {scaled, row.size()});
    if (result == kSuccess) result = scaling.progress.RowDone();
  }
  return result;
}

}  // namespace quillo::imaging
