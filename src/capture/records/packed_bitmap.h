#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>

#include "base/bytes.h"
#include "capture/records/packed_dib.h"

// How a surface becomes a packed bitmap; packed_dib.h reads them.
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

/// Gives a mask the two colours that masks carry. Playback replaces them before use.
void SetMaskColours(DibInfo& head);

/// The bytes in front of the pixel bits.
Bytes PackedHeadBytes(const DibInfo& head);

/// The pixel bits of a surface in memory.
struct SurfaceBits {
  Bytes bits;
  uint32_t row_size;  // bytes
  uint32_t row_count;
  bool top_down;

  /// Bytes of the rows that have to be turned round, whether they are there or not.
  [[nodiscard]] uint64_t TurnedSize() const {
    return top_down ? uint64_t{row_size} * row_count : 0;
  }
  /// Bytes that ForEachPiece hands over.
  [[nodiscard]] uint64_t Size() const { return std::max<uint64_t>(TurnedSize(), bits.size()); }
};

/// Calls `take` with pieces of a surface's bits, in the order that makes them bottom-up: in one
/// piece as they stand, or row by row from the last one when they are top-down, and then what is
/// left behind the rows. Rows that the bits end before are zeros.
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
  const uint64_t turned = surface.TurnedSize();
  const auto there = static_cast<size_t>(std::min<uint64_t>(turned, surface.bits.size()));
  if (turned != 0) {
    const size_t cut = there % surface.row_size;  // what is there of a row that is cut off
    const uint64_t padding = cut != 0 ? surface.row_size - cut : 0;
    take_zeros(turned - there - padding);
    if (cut != 0) take(surface.bits.subspan(there - cut, cut));
    take_zeros(padding);
    for (size_t end = there - cut; end != 0; end -= surface.row_size) {
      take(surface.bits.subspan(end - surface.row_size, surface.row_size));
    }
  }
  if (there != surface.bits.size()) take(surface.bits.subspan(there));
}

}  // namespace quillo::records
