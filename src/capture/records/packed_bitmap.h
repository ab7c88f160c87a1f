#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>

#include "base/bytes.h"
#include "capture/records/packed_dib.h"

// Surfaces as packed bitmaps; packed_dib.h reads them back.
namespace quillo::records {

/// What a surface format (BMF_*) means in a header.
struct SurfaceFormat {
  uint16_t bit_count;
  DibCompression compression;
};

/// Nothing for the formats that have no bit count, and for unknown numbers.
std::optional<SurfaceFormat> FindSurfaceFormat(uint32_t surface_format);

/// Bytes of a packed bitmap whose pixel bits take `bits_size` bytes; nothing when they do not fit.
std::optional<uint32_t> PackedSize(SurfaceFormat format, uint64_t bits_size);

/// Dots per inch; 0 = no device at hand.
struct DotsPerInch {
  uint32_t x;
  uint32_t y;
};

/// Header and an empty colour table.
DibInfo MakePackedHead(SurfaceFormat format, int32_t width, int32_t height, DotsPerInch dpi);

/// Sets the two colours of a mask.
///
/// Compatibility: they are 0xFFFF00 and white, as in existing streams; playback replaces them by
/// black and white before use.
void SetMaskColours(DibInfo& head);

/// The bytes that precede the pixel bits.
Bytes PackedHeadBytes(const DibInfo& head);

/// The pixel bits of a surface in memory.
struct SurfaceBits {
  Bytes bits;
  uint32_t row_size;  // bytes
  uint32_t row_count;
  bool top_down;

  /// Bytes of the rows to be reversed, present or not.
  [[nodiscard]] uint64_t ReversedSize() const {
    return top_down ? uint64_t{row_size} * row_count : 0;
  }
  /// Bytes that ForEachPiece passes on.
  [[nodiscard]] uint64_t Size() const { return std::max<uint64_t>(ReversedSize(), bits.size()); }
};

/// Calls `take` with pieces of a surface's bits, in the order that makes them bottom-up: in one
/// piece, or, when they are top-down, row by row from the last one and then whatever follows the
/// rows. Rows beyond the end of the bits are zeros.
template <typename Take>
void ForEachPiece(const SurfaceBits& surface, Take take) {
  const auto take_zeros = [&take](uint64_t size) {
    static constexpr std::byte kZeros[4096] = {};
    for (uint64_t left = size; left != 0;) {
      const auto piece = static_cast<size_t>(std::min<uint64_t>(left, sizeof kZeros));
      take(Bytes(kZeros).first(piece));
      left -= piece;
    }
  };
  const uint64_t reversed = surface.ReversedSize();
  const auto there = static_cast<size_t>(std::min<uint64_t>(reversed, surface.bits.size()));
  if (reversed != 0) {
    const size_t cut = there % surface.row_size;  // bytes present of a row that is cut off
    const uint64_t padding = cut != 0 ? surface.row_size - cut : 0;
    take_zeros(reversed - there - padding);
    if (cut != 0) take(surface.bits.subspan(there - cut, cut));
    take_zeros(padding);
    for (size_t end = there - cut; end != 0; end -= surface.row_size) {
      take(surface.bits.subspan(end - surface.row_size, surface.row_size));
    }
  }
  if (there != surface.bits.size()) take(surface.bits.subspan(there));
}

}  // namespace quillo::records
